// Tests that an application does not notice a failing call of the runtime that
// it has not made itself, whichever call it is.

#include "tests/faults/Reports.h"
#include "tests/faults/Story.h"
#include "tests/support/AgentMemory.h"
#include "tests/support/ErrorCapture.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <algorithm>
#include <cstdio>
#include <set>
#include <tuple>
#include <utility>

using namespace corvane::test;
using testing::IsEmpty;

namespace {
using Parameters = std::tuple<bool, Running, cl_int>;

class CallFaults : public testing::TestWithParam<Parameters> {
protected:
  const cl_int code = std::get<cl_int>(GetParam());

  // One for all stories: the C library keeps every value of a variable.
  TempFolder folder{folderInMemory()};

  Telling telling() const {
    return {std::get<bool>(GetParam()), std::get<Running>(GetParam())};
  }

  std::size_t blocksBefore = 0;
  std::size_t kept = 0;

  // The entries that are called by a story in which nothing fails.
  std::set<std::string> usualCalls() {
    std::set<std::string> calls;
    {
      Story story(telling(), folder);
      story.tell();
      EXPECT_THAT(story.leftovers(), IsEmpty());
      EXPECT_EQ(story.rows(), story.rowsExpected());
      calls = story.calls();
    }
    blocksBefore = AgentMemory::liveBlocks();
    return calls;
  }

  // How many blocks are never freed: the host copies of transfers, if the run
  // whose completion shows their end was not launched or not watched.
  std::size_t mostKept(const Failures &failures) const {
    const auto isRun = [](const auto &failure) {
      return failure.first == "clSetEventCallback" ||
             failure.first == "clEnqueueNDRangeKernel";
    };
    const bool unwatched = std::any_of(failures.begin(), failures.end(), isRun);
    return telling().tuning && unwatched ? 4 * 2 : 0;
  }

  // Tells the story with a fault in it and expects that nothing else is wrong.
  // Returns the entry that failed, which is \p always or the one of the planned
  // fault; empty if the story had none.
  template <typename Plan>
  std::string tellWith(Plan plan, std::string always = {}) {
    ErrorCapture errors;
    Failures failures;
    std::string entry = std::move(always);
    {
      Story story(telling(), folder);
      plan(story.runtime);
      story.tell();
      failures = story.failures();
      EXPECT_EQ(story.rows(), story.rowsExpected());
      if (entry.empty())
        entry = story.runtime.failedOfAny();
      // What the runtime refused to release is not expected to be gone.
      if (entry.find("clRelease") == std::string::npos) {
        EXPECT_THAT(story.leftovers(), IsEmpty());
      }
    }
    kept += mostKept(failures);
    // One more block is the environment's, if the agent changed it last.
    EXPECT_LE(AgentMemory::liveBlocks(), blocksBefore + kept + 1);
    expectReportsOf(failures, errors.text());
    return entry;
  }
};
} // namespace

TEST_P(CallFaults, LeaveNoTraceWhenOneCallFailsOnce) {
  usualCalls();
  std::size_t n = 1;
  for (;; ++n) {
    SCOPED_TRACE("call " + std::to_string(n) + " fails");
    const std::string entry =
        tellWith([=](FakeRuntime &runtime) { runtime.answerAny(n, code); });
    ASSERT_FALSE(HasFailure()) << entry;
    if (entry.empty())
      break;
  }
  EXPECT_GT(n, 100U);
  std::printf("[ faults   ] %zu calls, each failed once with %d\n", n - 1,
              code);
}

TEST_P(CallFaults, LeaveNoTraceWhenAnEntryAlwaysFails) {
  const std::set<std::string> entries = usualCalls();
  for (const std::string &entry : entries) {
    SCOPED_TRACE(entry + " always fails");
    tellWith([&](FakeRuntime &runtime) { runtime.answer(entry, code); }, entry);
    ASSERT_FALSE(HasFailure());
  }
  EXPECT_GT(entries.size(), 15U);
  std::printf("[ faults   ] %zu entries, each failed for good with %d\n",
              entries.size(), code);
}

static std::string storyName(const testing::TestParamInfo<Parameters> &info) {
  const auto [tuning, running, code] = info.param;
  const std::string name = tuning ? "Tuning" : "Normal";
  return name + textOf(running) + "Code" + std::to_string(-code);
}

// A code that every entry may return, one that a query returns for a place that
// is too small, and one that has no name.
INSTANTIATE_TEST_SUITE_P(
    , CallFaults,
    testing::Combine(testing::Bool(),
                     testing::Values(Running::AtOnce, Running::BeforeTheRelease,
                                     Running::AfterTheUnload),
                     testing::Values(CL_OUT_OF_RESOURCES, CL_INVALID_VALUE,
                                     -9999)),
    storyName);
