// Decides, once a load, whether this process tunes, and ends tuning.

#include "agent/AgentState.h"
#include "agent/Environment.h"
#include "agent/ErrorStream.h"
#include "agent/entry/LoadSteps.h"
#include "base/ForkedChild.h"
#include "base/Platform.h"
#include "launch/Tuning.h"
#include "session/LaunchHistory.h"
#include "tuner/TuningThread.h"

#include <chrono>

using namespace corvane;

void corvane::prepareTuning() {
  AgentState *const state = agentState();
  if (!state || state->tuning)
    return;
  const EnvironmentLook look;
  if (!look)
    return;
  std::optional<TuneSettings> settings =
      readTuneSettings(state->launchRecords->loadFolder);
  if (!settings)
    return;
  if (resultsDir())
    return writeError("CV: CORVANE_AUTOTUNE is set, so CORVANE_TUNE does not "
                      "count.\n");
  state->tuning =
      std::make_shared<Tuning>(std::move(*settings), state->launchRecords);
  state->tuningRun =
      std::shared_ptr<TuningRun>(state->tuning, &state->tuning->run);
  resumeTuning();
}

// A job of which a run never ends must not keep the process for ever.
void corvane::endTuning(bool atExit) {
  constexpr std::chrono::seconds mostWait(5);
  if (inForkedChild())
    return;
  stopTuning();
  if (platform::otherThreadsAreGone() || waitForTuning(mostWait))
    return;
  if (atExit)
    abandonTuning();
}
