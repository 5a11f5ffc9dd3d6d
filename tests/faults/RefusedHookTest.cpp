// Tests of single hooks that are refused memory at every request they make.

#include "tests/faults/RefusedCalls.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <algorithm>
#include <array>
#include <cstdlib>

using namespace corvane;
using namespace corvane::test;
using testing::IsEmpty;

using RefusedHook = RefusedCalls;

TEST_F(RefusedHook, CreateKernelLeavesNeitherKernelNorVariants) {
  cl_kernel kernel = nullptr;
  refuseEach(
      [&] {
        cl_int status = CL_SUCCESS;
        kernel = cl().clCreateKernel(program, "k", &status);
        return status;
      },
      [&] { cl().clReleaseKernel(kernel); },
      1); // what the kernels called k have in common
  ASSERT_NE(kernel, nullptr);
  EXPECT_EQ(cl().clReleaseKernel(kernel), CL_SUCCESS);
  EXPECT_THAT(runtime.alive("kernel"), IsEmpty());
}

TEST_F(RefusedHook, CreateKernelsInProgramLeavesNoneOfThem) {
  std::array<cl_kernel, 2> kernels{};
  refuseEach(
      [&] {
        return cl().clCreateKernelsInProgram(program, 2, kernels.data(),
                                             nullptr);
      },
      [&] {
        std::for_each(kernels.begin(), kernels.end(), cl().clReleaseKernel);
      },
      2); // what those called k, or j, have in common
  for (cl_kernel kernel : kernels) {
    ASSERT_NE(kernel, nullptr);
    EXPECT_EQ(cl().clReleaseKernel(kernel), CL_SUCCESS);
  }
  EXPECT_THAT(runtime.alive("kernel"), IsEmpty());
}

TEST_F(RefusedHook, CreateBufferLeavesNoBuffer) {
  cl_mem buffer = nullptr;
  refuseEach(
      [&] {
        cl_int status = CL_SUCCESS;
        buffer = cl().clCreateBuffer(runtime.context(), CL_MEM_READ_WRITE, 64,
                                     nullptr, &status);
        return status;
      },
      [&] { cl().clReleaseMemObject(buffer); });
  ASSERT_NE(buffer, nullptr);
  EXPECT_EQ(cl().clReleaseMemObject(buffer), CL_SUCCESS);
  EXPECT_THAT(runtime.alive("buffer"), IsEmpty());
}

TEST_F(RefusedHook, LinkProgramLeavesNoProgram) {
  for (int i = 0; i != 100; ++i) // each attempt uses one up
    runtime.linkMakes().kernel("k").kernel("k_coarsed_g0S4");
  cl_program linked = nullptr;
  refuseEach(
      [&] {
        cl_int status = CL_SUCCESS;
        linked = cl().clLinkProgram(runtime.context(), 0, nullptr, nullptr, 0,
                                    nullptr, nullptr, nullptr, &status);
        return status;
      },
      [&] { cl().clReleaseProgram(linked); });
  ASSERT_NE(linked, nullptr);
  EXPECT_EQ(cl().clReleaseProgram(linked), CL_SUCCESS);
  EXPECT_EQ(runtime.alive("program").size(), 1U);
}

TEST_F(RefusedHook, BuildProgramAddsAllKernelsOrNone) {
  refuseEach([&] { return test::build(cl(), program); }, [] {});
  // Once for each build that worked, with the build logs read or not.
  EXPECT_THAT(kernelNames(cl(), program), testing::MatchesRegex("k;j(;k;j)+"));
  EXPECT_EQ(cl().clReleaseProgram(program), CL_SUCCESS);
  EXPECT_THAT(runtime.alive("kernel"), IsEmpty());
}

// The first build is followed by one in which the compiler does not see the
// output directory.
TEST_F(RefusedHook, BuildProgramNeverLosesTheOutputDirectory) {
  const cl_program spilling =
      runtime.addProgram().kernel("k").kernel("k_coarsed_g0S4").log(spillLog);
  std::size_t kept = 0;
  for (std::size_t n = 1;; ++n) {
    AgentMemory::refuse(n);
    try {
      test::build(cl(), spilling);
    } catch (const std::bad_alloc &) {
    }
    if (!AgentMemory::refuseNothing())
      break;
    const char *shown = std::getenv(variable::autotune);
    const char *hidden = std::getenv(variable::autotuneShadow);
    ASSERT_NE(shown != nullptr, hidden != nullptr);
    EXPECT_EQ(shown ? shown : hidden, folder.text());
    kept += hidden ? 1 : 0;
    test::build(cl(), spilling);
    EXPECT_EQ(std::getenv(variable::autotune), folder.text());
  }
  EXPECT_GT(kept, 0U);
}

TEST_F(RefusedHook, SetKernelArgLeavesKernelAndVariantsWithTheOldValue) {
  cl_kernel kernel = cl().clCreateKernel(program, "k", nullptr);
  const std::array<unsigned char, 32> value{1, 2, 3};
  for (const cl_uint index : {2, 0, 1})
    for (const std::size_t size : {24, 32}) {
      refuseEach(
          [&] {
            runtime.forgetTranscript();
            try {
              return cl().clSetKernelArg(kernel, index, size, value.data());
            } catch (const std::bad_alloc &) {
              EXPECT_THAT(runtime.transcript(), IsEmpty());
              throw;
            }
          },
          [] {});
    }
  EXPECT_EQ(cl().clReleaseKernel(kernel), CL_SUCCESS);
}
