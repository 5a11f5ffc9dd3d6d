// Decides, once a load, whether this process autotunes.

#include "agent/entry/LoadSteps.h"

#include "agent/AgentState.h"
#include "agent/Environment.h"
#include "agent/ErrorStream.h"
#include "agent/Flags.h"
#include "base/Platform.h"
#include "session/LaunchHistory.h"
#include "session/LogAppender.h"

#include <optional>
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
  return state ? state->launchRecords->loadFolder : platform::currentFolder();
}

// A build on another thread may have parked the variable.
static std::optional<std::string> givenDirectory() {
  const EnvironmentLook look;
  const char *value = look ? resultsDir() : nullptr;
  if (!value)
    return std::nullopt;
  return value;
}

void corvane::prepareOutput() {
  // Looked up and deliberately ignored: the name is reserved.
  (void)lookUp(variable::corvane);

  const std::optional<std::string> asGiven = givenDirectory();
  const std::optional<std::string> directory = outputDirectory(loadFolder());
  if (!asGiven || !directory) {
    setAutotuneOutput(false);
    return;
  }
  platform::createDirectory(directory->c_str());
  const bool usable = createRawLog(*directory);
  if (!usable)
    reportUnusable(*asGiven);
  setAutotuneOutput(usable);
}
