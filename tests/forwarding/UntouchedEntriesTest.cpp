// Tests that exactly thirteen entries of the table are replaced.

#include "tests/support/FakeTable.h"
#include "tests/support/LoadedAgent.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

using namespace corvane;
using namespace corvane::test;
using testing::UnorderedElementsAre;

using Entries = std::array<const void *, entryCount>;

static std::vector<std::string> differences(const Entries &before,
                                            const Entries &after) {
  std::vector<std::string> names;
  for (std::size_t index = 0; index != entryCount; ++index)
    if (before[index] != after[index])
      names.emplace_back(entryNames[index]);
  return names;
}

static Entries loadInto(FakeRuntime &runtime, const Entries &given) {
  runtime.ownTable() = tableOf(given);
  LoadedAgent agent(runtime);
  return entriesOf(agent.table());
}

static auto areTheHooked() {
  return UnorderedElementsAre(
      "clReleaseContext", "clCreateCommandQueue", "clCreateBuffer",
      "clCreateProgramWithSource", "clReleaseProgram", "clBuildProgram",
      "clGetProgramInfo", "clCreateKernel", "clCreateKernelsInProgram",
      "clReleaseKernel", "clSetKernelArg", "clEnqueueNDRangeKernel",
      "clLinkProgram");
}

TEST(UntouchedEntries, AreTheOther106OfARuntimesTable) {
  FakeRuntime runtime;
  const Entries given = entriesOf(runtime.ownTable());
  EXPECT_THAT(differences(given, loadInto(runtime, given)), areTheHooked());
}

TEST(UntouchedEntries, KeepEveryBitWhateverTheyAre) {
  FakeRuntime runtime;
  Entries given{};
  for (std::size_t index = 0; index != entryCount; ++index)
    given[index] =
        reinterpret_cast<const void *>(~std::uintptr_t{0} / (index + 1));
  EXPECT_THAT(differences(given, loadInto(runtime, given)), areTheHooked());
}

TEST(UntouchedEntries, StayNullInATableOfNulls) {
  FakeRuntime runtime;
  EXPECT_EQ(loadInto(runtime, Entries{}), Entries{});
}

TEST(UntouchedEntries, IncludeAHookedEntryThatTheRuntimeLeavesNull) {
  for (std::size_t index = 0; index != entryCount; ++index) {
    FakeRuntime runtime;
    Entries given = entriesOf(runtime.ownTable());
    given[index] = nullptr;
    const Entries installed = loadInto(runtime, given);
    EXPECT_EQ(installed[index], nullptr) << entryNames[index];
    EXPECT_EQ(std::count(installed.begin(), installed.end(), nullptr), 1)
        << entryNames[index];
  }
}
