// Tests of the reports on failed calls about programs and buffers, by tag.

#include "tests/behaviour/Calls.h"
#include "tests/support/ErrorCapture.h"
#include "tests/support/TempFolder.h"

#include "gtest/gtest.h"

using namespace corvane;
using namespace corvane::test;

namespace {
class ProgramReports : public testing::Test {
protected:
  FakeRuntime runtime;
  TempFolder folder;
  LoadedAgent agent{runtime, {{"CORVANE_AUTOTUNE", folder.text()}}};
  const DispatchTable &cl = agent.table();
  ErrorCapture errors;
};
} // namespace

TEST_F(ProgramReports, Tag128And321WhenABuildCannotCountItsDevices) {
  const cl_program program = runtime.addProgram();
  runtime.answer("clGetProgramInfo", CL_OUT_OF_RESOURCES, 1);
  EXPECT_EQ(build(cl, program), CL_SUCCESS);
  EXPECT_EQ(errors.text(), "QrlAgent:: 128: CL Error: CL_OUT_OF_RESOURCES\n"
                           "QrlAgent:: 321: CL Error: CL_OUT_OF_RESOURCES\n");
}

TEST_F(ProgramReports, Tag131And321WhenABuildCannotListItsDevices) {
  const cl_program program = runtime.addProgram();
  runtime.answer("clGetProgramInfo", CL_OUT_OF_HOST_MEMORY, 2);
  EXPECT_EQ(build(cl, program), CL_SUCCESS);
  EXPECT_EQ(errors.text(), "QrlAgent:: 131: CL Error: CL_OUT_OF_HOST_MEMORY\n"
                           "QrlAgent:: 321: CL Error: CL_OUT_OF_HOST_MEMORY\n");
}

TEST_F(ProgramReports, Tag148WhenAReleaseFails) {
  runtime.answer("clReleaseProgram", CL_INVALID_PROGRAM);
  EXPECT_EQ(cl.clReleaseProgram(runtime.addProgram()), CL_INVALID_PROGRAM);
  EXPECT_EQ(errors.text(), "QrlAgent:: 148: CL Error: CL_INVALID_PROGRAM\n");
}

TEST_F(ProgramReports, Tag227WhenABuildLogHasNoSize) {
  const cl_program program = runtime.addProgram().log("log");
  runtime.answer("clGetProgramBuildInfo", CL_INVALID_DEVICE, 1);
  EXPECT_EQ(build(cl, program), CL_SUCCESS);
  EXPECT_EQ(errors.text(), "QrlAgent:: 227: CL Error: CL_INVALID_DEVICE\n");
}

TEST_F(ProgramReports, Tag234WhenABuildLogHasNoText) {
  const cl_program program = runtime.addProgram().log("log");
  runtime.answer("clGetProgramBuildInfo", CL_INVALID_DEVICE, 2);
  EXPECT_EQ(build(cl, program), CL_SUCCESS);
  EXPECT_EQ(errors.text(), "QrlAgent:: 234: CL Error: CL_INVALID_DEVICE\n");
}

TEST_F(ProgramReports, Tag259WhenTheKernelsCannotBeCreated) {
  const cl_program program = runtime.addProgram();
  runtime.answer("clCreateKernelsInProgram", CL_INVALID_KERNEL_DEFINITION);
  EXPECT_EQ(build(cl, program), CL_SUCCESS);
  EXPECT_EQ(errors.text(),
            "QrlAgent:: 259: CL Error: CL_INVALID_KERNEL_DEFINITION\n");
}

TEST_F(ProgramReports, Tag281ForEachKernelThatCannotBeReleased) {
  const cl_program program = runtime.addProgram().kernel("a").kernel("b");
  runtime.answer("clReleaseKernel", CL_INVALID_KERNEL);
  EXPECT_EQ(build(cl, program), CL_SUCCESS);
  EXPECT_EQ(errors.text(), "QrlAgent:: 281: CL Error: CL_INVALID_KERNEL\n"
                           "QrlAgent:: 281: CL Error: CL_INVALID_KERNEL\n");
}

TEST_F(ProgramReports, Tag342WhenABuildFails) {
  const cl_program program =
      runtime.addProgram().buildStatus(CL_BUILD_PROGRAM_FAILURE);
  EXPECT_EQ(build(cl, program), CL_BUILD_PROGRAM_FAILURE);
  EXPECT_EQ(errors.text(),
            "QrlAgent:: 342: CL Error: CL_BUILD_PROGRAM_FAILURE\n");
}

TEST_F(ProgramReports, Tag1211WhenABufferCannotBeWatched) {
  runtime.answer("clSetMemObjectDestructorCallback", CL_OUT_OF_HOST_MEMORY);
  EXPECT_NE(createBuffer(runtime, cl), nullptr);
  EXPECT_EQ(errors.text(),
            "QrlAgent:: 1211: CL Error: CL_OUT_OF_HOST_MEMORY\n");
}

TEST_F(ProgramReports, Tag128And1263WhenALinkCannotCountItsDevices) {
  runtime.answer("clGetProgramInfo", CL_OUT_OF_RESOURCES, 1);
  EXPECT_NE(cl.clLinkProgram(runtime.context(), 0, nullptr, nullptr, 0, nullptr,
                             nullptr, nullptr, nullptr),
            nullptr);
  EXPECT_EQ(errors.text(), "QrlAgent:: 128: CL Error: CL_OUT_OF_RESOURCES\n"
                           "QrlAgent:: 1263: CL Error: CL_OUT_OF_RESOURCES\n");
}

TEST_F(ProgramReports, Tag131And1263WhenALinkCannotListItsDevices) {
  runtime.answer("clGetProgramInfo", CL_OUT_OF_RESOURCES, 2);
  cl.clLinkProgram(runtime.context(), 0, nullptr, nullptr, 0, nullptr, nullptr,
                   nullptr, nullptr);
  EXPECT_EQ(errors.text(), "QrlAgent:: 131: CL Error: CL_OUT_OF_RESOURCES\n"
                           "QrlAgent:: 1263: CL Error: CL_OUT_OF_RESOURCES\n");
}
