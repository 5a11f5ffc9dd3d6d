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
    testing::Values(
        RoundPlan{Mode::Normal, false}, RoundPlan{Mode::Normal, true},
        RoundPlan{Mode::Profiled, false}, RoundPlan{Mode::Profiled, true},
        RoundPlan{Mode::Autotuning, false}, RoundPlan{Mode::Autotuning, true},
        // A launch that is measured runs after its call.
        RoundPlan{Mode::Measuring, false}),
    [](const auto &test) {
      return nameOf(test.param.mode) + (test.param.atOnce ? "AtOnce" : "Late");
    });
