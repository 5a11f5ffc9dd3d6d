// Tests of the hash that names a program in every process.

#include "InventedRuntime.h"

#include "agent/AgentState.h"
#include "programs/ProgramIdentity.h"
#include "programs/ProgramRecord.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <mutex>
#include <vector>

using namespace corvane;
using namespace corvane::test;

namespace {

struct HashOfAProgram : testing::Test {
  InventedRuntime runtime;
  cl_program program = InventedRuntime::object<cl_program>(1);
  cl_device_id first = InventedRuntime::object<cl_device_id>(2);
  cl_device_id second = InventedRuntime::object<cl_device_id>(3);
  AgentState state;

  HashOfAProgram() {
    runtime.program[CL_PROGRAM_SOURCE] = text("kernel void k() {}");
    setOptions(first, "-DN=4");
    setOptions(second, "-DN=8");
  }
  void setOptions(cl_device_id device, const std::string &options) {
    runtime.build[{device, CL_PROGRAM_BUILD_OPTIONS}] = text(options);
  }
  void setBinaries(const std::vector<std::string> &binaries) {
    runtime.program.erase(CL_PROGRAM_SOURCE);
    runtime.program[CL_PROGRAM_DEVICES] = value(std::array{first, second});
    runtime.program[CL_PROGRAM_BINARY_SIZES] =
        value(std::array{binaries[0].size(), binaries[1].size()});
    runtime.program[CL_PROGRAM_BINARIES] =
        [binaries](std::size_t room, void *place, std::size_t *) {
          EXPECT_EQ(room, 2 * sizeof(void *));
          auto *const *places = static_cast<unsigned char *const *>(place);
          for (std::size_t i = 0; i != binaries.size(); ++i)
            if (places[i])
              std::memcpy(places[i], binaries[i].data(), binaries[i].size());
          return CL_SUCCESS;
        };
  }
  std::string hash(cl_device_id device) {
    return programHash(state, program, device).value_or("none");
  }
};

} // namespace

// By: printf 'source 5\n-DN=4kernel void k() {}' | sha256sum
TEST_F(HashOfAProgram, IsTheDocumentedOne) {
  EXPECT_EQ(hash(first),
            "7bf580592f5678a392dec11f243001c78082f041cdf3f2289facb96864716e40");
}

TEST_F(HashOfAProgram, FollowsTheOptionsOfTheDevice) {
  EXPECT_NE(hash(first), hash(second));
  setOptions(second, "-DN=4");
  EXPECT_EQ(hash(first), hash(second));
}

TEST_F(HashOfAProgram, DoesNotTakeOptionsForSource) {
  runtime.program[CL_PROGRAM_SOURCE] = text("bc");
  setOptions(first, "a");
  const std::string before = hash(first);
  runtime.program[CL_PROGRAM_SOURCE] = text("c");
  setOptions(first, "ab");
  EXPECT_NE(hash(first), before);
}

// By: printf 'binary 5\n-DN=4\1\0\2' | sha256sum
TEST_F(HashOfAProgram, IsOfTheDevicesBinaryWhereThereIsNoSource) {
  setBinaries({std::string("\1\0\2", 3), "other"});
  EXPECT_EQ(hash(first),
            "b13f614ee8a04b16b50325ae16e36bb9540b95c01bba7904ec661dcc72e03d6b");
  setOptions(second, "-DN=4");
  EXPECT_NE(hash(second), hash(first));
  // Some runtimes have an empty source then.
  const std::string before = hash(first);
  runtime.program[CL_PROGRAM_SOURCE] = text("");
  EXPECT_EQ(hash(first), before);
}

TEST_F(HashOfAProgram, IsNoneWhereTheRuntimeTellsTooLittle) {
  const auto elsewhere = InventedRuntime::object<cl_device_id>(9);
  EXPECT_EQ(hash(elsewhere), "none"); // no options
  setBinaries({"", "b"});
  EXPECT_EQ(hash(first), "none"); // an empty binary
  setOptions(elsewhere, "");
  EXPECT_EQ(hash(elsewhere), "none"); // not a device of the program
  runtime.program.erase(CL_PROGRAM_BINARIES);
  EXPECT_EQ(hash(second), "none");
  runtime.program.erase(CL_PROGRAM_BINARY_SIZES);
  EXPECT_EQ(hash(second), "none");
  runtime.program.erase(CL_PROGRAM_DEVICES);
  EXPECT_EQ(hash(second), "none");
}

TEST_F(HashOfAProgram, IsNoneForSizesOutOfAllProportion) {
  const Answer huge = [](std::size_t, void *place, std::size_t *size) {
    EXPECT_EQ(place, nullptr);
    if (size)
      *size = static_cast<std::size_t>(-1);
    return CL_SUCCESS;
  };
  setBinaries({"a", "b"});
  runtime.program[CL_PROGRAM_BINARY_SIZES] =
      value(std::array{static_cast<std::size_t>(-1), std::size_t{1}});
  EXPECT_EQ(hash(first), "none");
  runtime.program[CL_PROGRAM_DEVICES] = huge;
  EXPECT_EQ(hash(first), "none");
  runtime.program[CL_PROGRAM_SOURCE] = huge;
  EXPECT_EQ(hash(first), "none");
}

TEST_F(HashOfAProgram, IsRememberedUntilTheNextBuild) {
  {
    const std::lock_guard<std::mutex> lock(state.programsLock);
    addGroup(findOrAddProgram(state, program), "k");
  }
  const std::string before = hash(first);
  const unsigned questions = runtime.questions;
  setOptions(first, "-DN=5");
  EXPECT_EQ(hash(first), before);
  EXPECT_EQ(runtime.questions, questions);

  forgetProgramHash(state, program);
  const std::string after = hash(first);
  EXPECT_NE(after, before);
  setOptions(first, "-DN=6");
  addKernels(state, program, {});
  EXPECT_NE(hash(first), after);
}

TEST_F(HashOfAProgram, IsFoundForAProgramThatTheAgentHasForgotten) {
  EXPECT_NE(hash(first), "none");
  EXPECT_EQ(state.programs.size(), 0U);
}
