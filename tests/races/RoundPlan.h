// What one round of threads is to be like, and how many there are.

#pragma once

#include <iosfwd>
#include <string>

namespace corvane::test {

/// What happens once in a round while all threads work.
enum class Turn {
  None,            ///< the results are flushed after all threads have ended
  ContextReleases, ///< releases of the context flush, from any thread
  Unload,
  SecondLoad,       ///< the runtime loads the agent once more
  UnloadAndLoad,    ///< one after the other
  ContextAndUnload, ///< two flushes at the same time
};
inline constexpr unsigned turns = 6;

/// What the environment asks of the agent.
enum class Mode {
  Normal,
  Profiled, ///< normal, with a profile
  Autotuning,
  Measuring, ///< variants are compared with their kernel
};

struct RoundPlan {
  Mode mode = Mode::Normal;
  bool atOnce = false; ///< the runtime runs and calls back within calls
  Turn turn = Turn::None;
  unsigned seed = 1; ///< of every choice; by a rule of the test, of the turn
};

std::string nameOf(Mode mode);
std::string textOf(const RoundPlan &plan);
void PrintTo(const RoundPlan &plan, std::ostream *out);

/// How often each test goes through all turns: CORVANE_RACES_ROUNDS.
unsigned wantedRounds();

/// The seed of a test's first round: CORVANE_RACES_SEED, or a random number.
unsigned firstSeed();

} // namespace corvane::test
