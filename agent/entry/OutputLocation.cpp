// Decides, once a load, whether this process autotunes.

#include "agent/entry/OutputLocation.h"

#include "agent/AgentState.h"
#include "agent/DebugLog.h"
#include "agent/Environment.h"
#include "agent/Flags.h"
#include "base/Platform.h"
#include "results/OutputDirectory.h"
#include "results/RawTimingLog.h"

#include <string>

using namespace corvane;

// The text is part of the interface, byte for byte.
static void reportUnusable(const std::string &directory) {
  writeError("CV: " + directory +
             " is invalid. There will be no autotune output generated.\n");
}

// A second load goes on with the history, and in the folder, of the first one.
static std::string loadFolder() {
  const AgentState *state = agentState();
  return state ? state->launchRecords->loadFolder : currentFolder();
}

void corvane::prepareOutput() {
  // Looked up and deliberately ignored: the name is reserved.
  (void)lookUp(variable::corvane);

  // A build on another thread may have parked the variable.
  const EnvironmentLook look;
  const char *value = resultsDir();
  if (!value) {
    setAutotuneOutput(false);
    return;
  }
  const std::string asGiven = value;
  const std::string directory = outputDirectory(loadFolder()).value_or("");
  platform::createDirectory(directory.c_str());
  const bool usable = createRawLog(directory);
  if (!usable)
    reportUnusable(asGiven);
  setAutotuneOutput(usable);
}
