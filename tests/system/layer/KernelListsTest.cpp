// Tests of the creation of all kernels of a program at once, by a runtime that
// is made to fail.

#include "tests/system/layer/LayeredRuntime.h"

#include <array>

using namespace corvane::test;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {
class LayeredKernelLists : public LayeredRuntime {
protected:
  cl_program builtProgram() {
    withVariant(runtime.sourceMakes());
    cl_program program = createProgram();
    build(program);
    runtime.forgetTranscript();
    return program;
  }

  cl_int createAll(cl_program program, cl_uint size) {
    kernels.fill(nullptr);
    count = 77;
    return cl().clCreateKernelsInProgram(program, size, kernels.data(), &count);
  }

  std::array<cl_kernel, 5000> kernels{};
  cl_uint count = 77;
};
} // namespace

TEST_F(LayeredKernelLists, AreCountedWithoutCreatingAKernel) {
  cl_program program = builtProgram();
  EXPECT_EQ(cl().clCreateKernelsInProgram(program, 0, nullptr, &count),
            CL_SUCCESS);
  EXPECT_EQ(count, 2u);
  EXPECT_THAT(runtime.transcript({"clCreateKernel"}), IsEmpty());
  EXPECT_THAT(runtime.transcript({"clCreateKernelsInProgram"}),
              Each("clCreateKernelsInProgram(program 1, 0, null, &)"));
  EXPECT_THAT(runtime.alive("kernel"), IsEmpty());
}

TEST_F(LayeredKernelLists, AreCreatedWithTheirVariants) {
  cl_program program = builtProgram();
  EXPECT_EQ(createAll(program, 1024), CL_SUCCESS);
  EXPECT_EQ(count, 2u);
  EXPECT_THAT(runtime.alive("kernel"),
              ElementsAre("kernel k", "kernel k_coarsed_g0S4", "kernel other"));
  cl().clReleaseKernel(kernels[0]);
  cl().clReleaseKernel(kernels[1]);
  EXPECT_THAT(runtime.alive("kernel"), IsEmpty());
}

TEST_F(LayeredKernelLists, AreNotCreatedInAnArrayThatIsTooSmall) {
  cl_program program = builtProgram();
  EXPECT_EQ(createAll(program, 1), CL_INVALID_VALUE);
  EXPECT_EQ(count, 77u);
  EXPECT_THAT(kernels, Each(nullptr));
  EXPECT_THAT(runtime.alive("kernel"), IsEmpty());
}

TEST_F(LayeredKernelLists, LeaveNoKernelBehindWhenOneCannotBeCreated) {
  cl_program program = builtProgram();
  // The third creation fails: after the kernel and its variant, the other
  // kernel's.
  runtime.answer("clCreateKernel", CL_OUT_OF_HOST_MEMORY, 3);
  EXPECT_EQ(createAll(program, 2), CL_OUT_OF_HOST_MEMORY);
  EXPECT_EQ(count, 77u);
  EXPECT_THAT(kernels, Each(nullptr));
  EXPECT_THAT(runtime.alive("kernel"), IsEmpty());
}

// The agent first asks for 4096 kernels.
TEST_F(LayeredKernelLists, AreWholeAndWithoutVariantsHoweverLong) {
  ProgramScript script = runtime.sourceMakes();
  for (int i = 0; i < 4100; ++i)
    script.kernel("k" + std::to_string(i));
  script.kernel("k0_coarsed_g0S4");
  cl_program program = createProgram();
  testing::internal::CaptureStderr();
  build(program);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "QrlAgent:: 259: CL Error: CL_INVALID_VALUE\n");
  EXPECT_EQ(cl().clCreateKernelsInProgram(program, 0, nullptr, &count),
            CL_SUCCESS);
  EXPECT_EQ(count, 4100u);
  EXPECT_EQ(createAll(program, 4100), CL_SUCCESS);
  EXPECT_EQ(count, 4100u);
  EXPECT_NE(kernels[4099], nullptr);
}

TEST_F(LayeredKernelLists, OfAProgramThatTheAgentDoesNotKnowAreTheRuntimesOwn) {
  cl_program program = withVariant(runtime.addProgram().alreadyBuilt());
  EXPECT_EQ(createAll(program, 3), CL_SUCCESS);
  EXPECT_EQ(count, 3u);
  EXPECT_THAT(runtime.transcript(),
              Contains("clCreateKernelsInProgram(program 1, 3, &, &)"));
  EXPECT_EQ(kernelNames(program), "k;k_coarsed_g0S4;other");
}

TEST_F(LayeredKernelLists, OfAProgramThatIsNotBuiltAreTheRuntimesToRefuse) {
  cl_program program = createProgram();
  EXPECT_EQ(createAll(program, 3), CL_INVALID_PROGRAM_EXECUTABLE);
  EXPECT_EQ(createAll(nullptr, 3), CL_INVALID_PROGRAM);
}

TEST_F(LayeredKernelLists, StayAsTheyWereWhenTheAgentHasWrittenItsResults) {
  loadAutotuning({{"CORV_FLUSH_AUTOTUNE_ON_RELEASE_CONTEXT", "1"}});
  cl_program program = builtProgram();
  EXPECT_EQ(cl().clReleaseContext(runtime.context()), CL_SUCCESS);
  EXPECT_EQ(kernelNames(program), "k;other");
  EXPECT_EQ(createAll(program, 2), CL_SUCCESS);
  EXPECT_EQ(count, 2u);
  EXPECT_THAT(runtime.alive("kernel"), ElementsAre("kernel k", "kernel other"));
}

TEST_F(LayeredKernelLists, LeaveNoVariantBehindWhenTheyGoAfterTheResults) {
  loadAutotuning({{"CORV_FLUSH_AUTOTUNE_ON_RELEASE_CONTEXT", "1"}});
  cl_program program = builtProgram();
  EXPECT_EQ(createAll(program, 2), CL_SUCCESS);
  EXPECT_EQ(cl().clReleaseContext(runtime.context()), CL_SUCCESS);
  cl().clReleaseKernel(kernels[0]);
  cl().clReleaseKernel(kernels[1]);
  EXPECT_THAT(runtime.alive("kernel"), IsEmpty());
}
