// Decides, once a load, whether this process tunes, and ends tuning.

#include "agent/AgentState.h"
#include "agent/Environment.h"
#include "agent/ErrorStream.h"
#include "agent/entry/LoadSteps.h"
#include "base/ForkedChild.h"
#include "base/Platform.h"
#include "launch/AppliedProfile.h"
#include "launch/Tuning.h"
#include "session/LaunchHistory.h"
#include "tuner/TuningThread.h"

#include <chrono>

using namespace corvane;

static bool isGiven(const char *name) {
  const char *const value = lookUp(name);
  return value && *value != '\0';
}

static void applyProfile(AgentState &state) {
  if (!isGiven(variable::profile))
    return;
  if (isGiven(variable::summary) && !isGiven(variable::tune))
    state.profileSummary = std::make_shared<ProfileSummary>();
  state.profile =
      readAppliedProfile(state.launchRecords->loadFolder, state.profileSummary);
}

static void tune(AgentState &state, TuneSettings settings) {
  state.tuning =
      std::make_shared<Tuning>(std::move(settings), state.launchRecords);
  state.tuningRun =
      std::shared_ptr<TuningRun>(state.tuning, &state.tuning->run);
  resumeTuning();
}

void corvane::prepareTuning() {
  AgentState *const state = agentState();
  if (!state || state->tuning || state->profile)
    return;
  const EnvironmentLook look;
  if (!look)
    return;
  for (const char *name : {variable::tune, variable::profile})
    if (resultsDir() && isGiven(name))
      return writeError(std::string("CV: CORVANE_AUTOTUNE is set, so ") + name +
                        " does not count.\n");
  applyProfile(*state);
  if (std::optional<TuneSettings> settings =
          readTuneSettings(state->launchRecords->loadFolder))
    tune(*state, std::move(*settings));
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
