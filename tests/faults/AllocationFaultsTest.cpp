// Tests that an application can go on after the agent was refused memory,
// whichever request it was: the call throws, is made again, and everything is
// as usual.

#include "tests/faults/Reports.h"
#include "tests/faults/Story.h"
#include "tests/support/AgentMemory.h"
#include "tests/support/ErrorCapture.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <cstdio>
#include <tuple>

using namespace corvane::test;
using testing::IsEmpty;

namespace {
class AllocationFaults
    : public testing::TestWithParam<std::tuple<bool, Running>> {
protected:
  // One for all stories: the C library keeps every value of a variable.
  TempFolder folder{folderInMemory()};

  Telling telling() const {
    return {std::get<bool>(GetParam()), std::get<Running>(GetParam())};
  }

  // Tells the story twice. The first time memory is allocated as well that the
  // process keeps.
  void tellUsually() const {
    for (int i = 0; i != 2; ++i) {
      Story story(telling(), folder);
      story.tell();
      EXPECT_THAT(story.leftovers(), IsEmpty());
    }
  }

  // Tells the story without the memory of one request. Returns whether the
  // story had that many requests.
  bool tellWithout(std::size_t request, void (*refuse)(std::size_t)) {
    ErrorCapture errors;
    bool refused = false;
    // The agent could not open the log, for which the C library needs memory.
    std::string another =
        "CV: " + folder.text() +
        " is invalid. There will be no autotune output generated.";
    {
      Story story(telling(), folder);
      refuse(request);
      story.tell();
      refused = story.wasRefusedMemory();
      if (story.directoryIsHidden())
        another = "ensureOutputDir() error";
      EXPECT_THAT(story.leftovers(), IsEmpty());
      EXPECT_LE(story.rows(), story.rowsExpected());
    }
    AgentMemory::refuseNothing();
    // One more block is the environment's, if the agent changed it last.
    EXPECT_LE(AgentMemory::liveBlocks(), blocksBefore + 1);
    expectReportsOf({}, errors.text(), another);
    return refused;
  }

  void tellWithoutEach(const char *what, void (*refuse)(std::size_t)) {
    tellUsually();
    blocksBefore = AgentMemory::liveBlocks();
    std::size_t n = 1;
    for (;; ++n) {
      SCOPED_TRACE(what + std::to_string(n) + " refused");
      const bool refused = tellWithout(n, refuse);
      ASSERT_FALSE(HasFailure());
      if (!refused)
        break;
    }
    EXPECT_GT(n, 100U);
    std::printf("[ faults   ] %zu: each of the agent's requests for memory, "
                "%s refused\n",
                n - 1, what);
  }

  std::size_t blocksBefore = 0;
};
} // namespace

TEST_P(AllocationFaults, CanBeOvercomeByTryingAgain) {
  tellWithoutEach("alone ", AgentMemory::refuse);
}

TEST_P(AllocationFaults, CanBeOvercomeWhenNothingIsToBeHadForAWhile) {
  tellWithoutEach("all from there on ", AgentMemory::refuseFrom);
}

static std::string allocationStoryName(
    const testing::TestParamInfo<std::tuple<bool, Running>> &info) {
  const auto [tuning, running] = info.param;
  return (tuning ? "Tuning" : "Normal") + textOf(running);
}

INSTANTIATE_TEST_SUITE_P(
    , AllocationFaults,
    testing::Combine(testing::Bool(),
                     testing::Values(Running::AtOnce, Running::BeforeTheRelease,
                                     Running::AfterTheUnload)),
    allocationStoryName);
