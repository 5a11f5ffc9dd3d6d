// Tests of the reports on failed calls about kernels and launches, by tag.

#include "tests/behaviour/Calls.h"
#include "tests/support/ErrorCapture.h"
#include "tests/support/TempFolder.h"

#include "gtest/gtest.h"

#include <optional>

using namespace corvane;
using namespace corvane::test;

namespace {
class KernelReports : public testing::Test {
protected:
  // Loads the agent and builds a program. Its kernel k takes one argument and
  // has one variant; its kernel "plain" has neither.
  void load(bool autotuning) {
    if (autotuning)
      output.emplace("CORVANE_AUTOTUNE", folder.text());
    agent.emplace(runtime);
    cl = &agent->table();
    program = runtime.addProgram()
                  .kernel("k", 1)
                  .kernel("k_coarsed_g0S4", 1)
                  .kernel("plain");
    build(*cl, program);
  }

  cl_kernel create(const char *name) const {
    return cl->clCreateKernel(program, name, nullptr);
  }

  cl_kernel createWithArgument() const {
    cl_kernel kernel = create("k");
    const cl_int value = 4;
    EXPECT_EQ(cl->clSetKernelArg(kernel, 0, sizeof value, &value), CL_SUCCESS);
    return kernel;
  }

  cl_int launch(cl_kernel kernel) {
    const std::size_t global = 16;
    const std::size_t local = 4;
    return cl->clEnqueueNDRangeKernel(runtime.queue(), kernel, 1, nullptr,
                                      &global, &local, 0, nullptr, nullptr);
  }

  FakeRuntime runtime;
  TempFolder folder;
  std::optional<EnvGuard> output;
  std::optional<LoadedAgent> agent;
  const DispatchTable *cl = nullptr;
  cl_program program = nullptr;
  ErrorCapture errors;
};
} // namespace

TEST_F(KernelReports, Tag460WhenAVariantCannotBeCreated) {
  load(/*autotuning=*/false);
  runtime.answer("clCreateKernel", CL_INVALID_KERNEL_NAME, 2);
  EXPECT_NE(create("k"), nullptr);
  EXPECT_EQ(errors.text(),
            "QrlAgent:: 460: CL Error: CL_INVALID_KERNEL_NAME\n");
}

TEST_F(KernelReports, Tag535WhenTheKernelsCannotBeCounted) {
  load(/*autotuning=*/false);
  runtime.answer("clCreateKernelsInProgram", CL_OUT_OF_RESOURCES, 1);
  cl->clCreateKernelsInProgram(program, 0, nullptr, nullptr);
  EXPECT_EQ(errors.text(), "QrlAgent:: 535: CL Error: CL_OUT_OF_RESOURCES\n");
}

TEST_F(KernelReports, Tag576WhenTheKernelsCannotBeCreatedAfterAFlush) {
  load(/*autotuning=*/false);
  agent->unload();
  runtime.answer("clCreateKernelsInProgram", CL_OUT_OF_RESOURCES);
  EXPECT_EQ(cl->clCreateKernelsInProgram(program, 0, nullptr, nullptr),
            CL_OUT_OF_RESOURCES);
  EXPECT_EQ(errors.text(), "QrlAgent:: 576: CL Error: CL_OUT_OF_RESOURCES\n");
}

TEST_F(KernelReports, Tag599WhenTheReferencesCannotBeCounted) {
  load(/*autotuning=*/false);
  cl_kernel kernel = create("k");
  runtime.answer("clGetKernelInfo", CL_OUT_OF_RESOURCES);
  EXPECT_EQ(cl->clReleaseKernel(kernel), CL_SUCCESS);
  EXPECT_EQ(errors.text(), "QrlAgent:: 599: CL Error: CL_OUT_OF_RESOURCES\n");
}

TEST_F(KernelReports, Tag601WhenAReleaseFails) {
  load(/*autotuning=*/false);
  cl_kernel kernel = create("k");
  runtime.answer("clReleaseKernel", CL_INVALID_KERNEL);
  EXPECT_EQ(cl->clReleaseKernel(kernel), CL_INVALID_KERNEL);
  EXPECT_EQ(errors.text(), "QrlAgent:: 601: CL Error: CL_INVALID_KERNEL\n");
}

TEST_F(KernelReports, Tag721WhenAVariantRefusesAnArgument) {
  load(/*autotuning=*/false);
  runtime.allowUnsetArguments();
  cl_kernel kernel = createWithArgument();
  runtime.answer("clSetKernelArg", CL_INVALID_ARG_SIZE, 1);
  EXPECT_EQ(launch(kernel), CL_SUCCESS);
  EXPECT_EQ(errors.text(), "QrlAgent:: 721: CL Error: CL_INVALID_ARG_SIZE\n");
}

TEST_F(KernelReports, Tag910WhenALaunchFails) {
  load(/*autotuning=*/false);
  cl_kernel kernel = create("plain");
  runtime.answer("clEnqueueNDRangeKernel", CL_INVALID_WORK_GROUP_SIZE);
  EXPECT_EQ(launch(kernel), CL_INVALID_WORK_GROUP_SIZE);
  EXPECT_EQ(errors.text(),
            "QrlAgent:: 910: CL Error: CL_INVALID_WORK_GROUP_SIZE\n");
}

TEST_F(KernelReports, Tag910WhenTheLaunchOfAVariantFails) {
  load(/*autotuning=*/false);
  cl_kernel kernel = createWithArgument();
  runtime.answer("clEnqueueNDRangeKernel", CL_OUT_OF_RESOURCES);
  EXPECT_EQ(launch(kernel), CL_OUT_OF_RESOURCES);
  EXPECT_EQ(errors.text(), "QrlAgent:: 910: CL Error: CL_OUT_OF_RESOURCES\n");
}

TEST_F(KernelReports, Tag741WhenARunHasNoStart) {
  load(/*autotuning=*/true);
  cl_kernel kernel = create("plain");
  runtime.answer("clGetEventProfilingInfo", CL_PROFILING_INFO_NOT_AVAILABLE);
  EXPECT_EQ(launch(kernel), CL_SUCCESS);
  EXPECT_EQ(errors.text(),
            "QrlAgent:: 741: CL Error: CL_PROFILING_INFO_NOT_AVAILABLE\n");
}

TEST_F(KernelReports, Tag745WhenARunHasNoEnd) {
  load(/*autotuning=*/true);
  cl_kernel kernel = create("plain");
  runtime.answer("clGetEventProfilingInfo", CL_INVALID_EVENT, 2);
  EXPECT_EQ(launch(kernel), CL_SUCCESS);
  EXPECT_EQ(errors.text(), "QrlAgent:: 745: CL Error: CL_INVALID_EVENT\n");
}

TEST_F(KernelReports, Tag1123And1145WhenARunCannotBeWatched) {
  load(/*autotuning=*/true);
  cl_kernel kernel = create("plain");
  runtime.answer("clSetEventCallback", CL_INVALID_EVENT);
  EXPECT_EQ(launch(kernel), CL_INVALID_EVENT);
  EXPECT_EQ(errors.text(), "QrlAgent:: 1123: CL Error: CL_INVALID_EVENT\n"
                           "QrlAgent:: 1145: CL Error: CL_INVALID_EVENT\n");
}

TEST_F(KernelReports, Tag1145WhenAnAutotuningLaunchFails) {
  load(/*autotuning=*/true);
  cl_kernel kernel = createWithArgument();
  runtime.answer("clEnqueueNDRangeKernel", CL_OUT_OF_RESOURCES);
  EXPECT_EQ(launch(kernel), CL_OUT_OF_RESOURCES);
  EXPECT_EQ(errors.text(), "QrlAgent:: 1145: CL Error: CL_OUT_OF_RESOURCES\n");
}
