// Tests of all hooks on many threads at once, for the thread sanitizer.

#include "tests/races/Round.h"

#include "gtest/gtest.h"

#include <iostream>

using namespace corvane::test;

namespace {
class Races : public testing::TestWithParam<RoundPlan> {};
} // namespace

TEST_P(Races, LeaveEveryBufferEveryRowAndEveryAnswerWhole) {
  RoundPlan plan = GetParam();
  plan.seed = firstSeed();
  std::cout << "seed " << plan.seed << "\n";
  std::size_t rows = 0;
  unsigned rounds = 0;
  while (rounds != turns * wantedRounds() && !HasFailure()) {
    plan.turn = static_cast<Turn>(plan.seed % turns);
    SCOPED_TRACE(textOf(plan));
    rows += Round(plan).play();
    ++plan.seed;
    ++rounds;
  }
  std::cout << rounds << " rounds of eight threads, " << rows << " rows\n";
}

INSTANTIATE_TEST_SUITE_P(
    Of, Races,
    testing::Values(RoundPlan{false, false}, RoundPlan{false, true},
                    RoundPlan{true, false}, RoundPlan{true, true}),
    [](const auto &test) {
      return std::string(test.param.tuning ? "Tuned" : "Normal") +
             (test.param.atOnce ? "AtOnce" : "Late");
    });
