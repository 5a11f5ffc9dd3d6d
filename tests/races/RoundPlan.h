// What one round of threads is to be like, and how many there are.

#pragma once

#include <iosfwd>
#include <string>

namespace corvane::test {

/// What happens while everybody is at work, beside the work.
enum class Turn {
  None,            ///< the results are flushed when all is over
  ContextReleases, ///< releases of the context flush, from any thread
  Unload,
  SecondLoad,       ///< the runtime loads the agent once more
  UnloadAndLoad,    ///< one after the other
  ContextAndUnload, ///< two flushes at the same time
};
inline constexpr unsigned turns = 6;

struct RoundPlan {
  bool tuning = false; ///< false: normal mode
  bool atOnce = false; ///< the runtime runs and calls back within calls
  Turn turn = Turn::None;
  unsigned seed = 1; ///< of every choice, and by the test's rule of the turn
};

std::string textOf(const RoundPlan &plan);
void PrintTo(const RoundPlan &plan, std::ostream *out);

/// From CORVANE_RACES_ROUNDS; how often each test goes through all turns.
unsigned wantedRounds();

/// What a test's first round makes its choices from: CORVANE_RACES_SEED, or a
/// number left to chance.
unsigned firstSeed();

} // namespace corvane::test
