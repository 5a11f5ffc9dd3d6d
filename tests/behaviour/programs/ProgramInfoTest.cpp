// Tests of what an application is told about a program's kernels.

#include "tests/behaviour/Calls.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <array>
#include <cstring>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;

namespace {
class ProgramInfo : public testing::Test {
protected:
  ProgramInfo() {
    program =
        runtime.addProgram().kernel("a").kernel("a_coarsed_g0S4").kernel("b");
    build(cl, program);
  }

  cl_int ask(cl_program_info what, std::size_t capacity, void *value,
             std::size_t *size) const {
    return cl.clGetProgramInfo(program, what, capacity, value, size);
  }

  FakeRuntime runtime;
  LoadedAgent agent{runtime};
  const DispatchTable &cl = agent.table();
  cl_program program = nullptr;
};
} // namespace

TEST_F(ProgramInfo, GivesNamesAndCountWithoutTheVariants) {
  EXPECT_EQ(kernelNames(cl, program), "a;b");
  EXPECT_EQ(kernelCount(cl, program), 2U);
}

// The name looks like a variant's, but its spec is wrong.
TEST_F(ProgramInfo, GivesKernelsThatAreOnlyNamedLikeVariants) {
  const cl_program other =
      runtime.addProgram().kernel("a").kernel("a_coarsed_4x").kernel("b");
  build(cl, other);
  EXPECT_EQ(kernelNames(cl, other), "a;a_coarsed_4x;b");
  EXPECT_EQ(kernelCount(cl, other), 3U);
}

TEST_F(ProgramInfo, TellsTheSizeOfTheNamesAlone) {
  std::size_t size = 0;
  EXPECT_EQ(ask(CL_PROGRAM_KERNEL_NAMES, 0, nullptr, &size), CL_SUCCESS);
  EXPECT_EQ(size, 4U);
}

TEST_F(ProgramInfo, NeedsNoPlaceAtAll) {
  EXPECT_EQ(ask(CL_PROGRAM_KERNEL_NAMES, 0, nullptr, nullptr), CL_SUCCESS);
  EXPECT_EQ(ask(CL_PROGRAM_NUM_KERNELS, 0, nullptr, nullptr), CL_SUCCESS);
}

TEST_F(ProgramInfo, GivesNamesAndTheirSizeTogether) {
  std::array<char, 10> names{};
  names.fill('#');
  std::size_t size = 0;
  EXPECT_EQ(ask(CL_PROGRAM_KERNEL_NAMES, names.size(), names.data(), &size),
            CL_SUCCESS);
  EXPECT_EQ(std::string(names.data(), names.size()),
            std::string("a;b\0######", 10));
  EXPECT_EQ(size, 4U);
}

TEST_F(ProgramInfo, RefusesAnAreaThatIsTooSmallForTheNames) {
  std::array<char, 4> names = {'#', '#', '#', '#'};
  std::size_t size = 77;
  EXPECT_EQ(ask(CL_PROGRAM_KERNEL_NAMES, 3, names.data(), &size),
            CL_INVALID_VALUE);
  EXPECT_THAT(names, ElementsAre('#', '#', '#', '#'));
  EXPECT_EQ(size, 77U);
  EXPECT_EQ(ask(CL_PROGRAM_KERNEL_NAMES, 4, names.data(), nullptr), CL_SUCCESS);
}

TEST_F(ProgramInfo, RefusesAnAreaThatIsTooSmallForTheCount) {
  std::uint32_t half[2] = {7, 7};
  EXPECT_EQ(ask(CL_PROGRAM_NUM_KERNELS, 4, half, nullptr), CL_INVALID_VALUE);
  EXPECT_THAT(half, ElementsAre(7, 7));
}

TEST_F(ProgramInfo, TellsTheSizeOfTheCount) {
  std::size_t size = 0;
  EXPECT_EQ(ask(CL_PROGRAM_NUM_KERNELS, 0, nullptr, &size), CL_SUCCESS);
  EXPECT_EQ(size, sizeof(std::size_t));
}

TEST_F(ProgramInfo, ReturnsTheRuntimesFailures) {
  std::size_t count = 77;
  std::array<char, 10> names{};
  runtime.answer("clGetProgramInfo", CL_MAP_FAILURE);
  EXPECT_EQ(ask(CL_PROGRAM_NUM_KERNELS, sizeof count, &count, nullptr),
            CL_MAP_FAILURE);
  EXPECT_EQ(ask(CL_PROGRAM_KERNEL_NAMES, names.size(), names.data(), nullptr),
            CL_MAP_FAILURE);
  EXPECT_EQ(count, 77U);
  EXPECT_EQ(names[0], '\0');
}

TEST_F(ProgramInfo, LeavesOtherQuestionsToTheRuntime) {
  runtime.forgetTranscript();
  cl_uint references = 0;
  std::size_t size = 0;
  EXPECT_EQ(
      ask(CL_PROGRAM_REFERENCE_COUNT, sizeof references, &references, &size),
      CL_SUCCESS);
  EXPECT_EQ(references, 1U);
  EXPECT_EQ(size, sizeof references);
  EXPECT_THAT(
      runtime.transcript(),
      ElementsAre(
          "clGetProgramInfo(program 1, CL_PROGRAM_REFERENCE_COUNT, 4, &, &)"));
}

TEST_F(ProgramInfo, LeavesAProgramWithoutARecordToTheRuntime) {
  const cl_program other =
      runtime.addProgram().kernel("k").kernel("k_coarsed_g0S4").alreadyBuilt();
  EXPECT_EQ(kernelNames(cl, other), "k;k_coarsed_g0S4");
  EXPECT_EQ(kernelCount(cl, other), 2U);
}

TEST_F(ProgramInfo, LeavesNonsenseToTheRuntime) {
  int somewhere = 0;
  std::size_t count = 0;
  EXPECT_EQ(cl.clGetProgramInfo(reinterpret_cast<cl_program>(&somewhere),
                                CL_PROGRAM_NUM_KERNELS, sizeof count, &count,
                                nullptr),
            CL_INVALID_PROGRAM);
  EXPECT_EQ(ask(0x7777, 8, &count, nullptr), CL_INVALID_VALUE);
}

TEST_F(ProgramInfo, IsTheRuntimesAfterTheUnload) {
  agent.unload();
  EXPECT_EQ(kernelNames(cl, program), "a;a_coarsed_g0S4;b");
  EXPECT_EQ(kernelCount(cl, program), 3U);
}
