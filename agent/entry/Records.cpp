// Creates and deletes the state: the one file that knows every record type.

#include "agent/entry/LoadSteps.h"

#include "agent/AgentState.h"
#include "base/Platform.h"
#include "launch/AppliedProfile.h"
#include "launch/KernelRecord.h"
#include "programs/BufferRecord.h"
#include "programs/ProgramRecord.h"
#include "session/LaunchHistory.h"

using namespace corvane;

AgentState::AgentState()
    : launchRecords(
          std::make_shared<LaunchHistory>(platform::currentFolder())) {}

AgentState::~AgentState() = default;

void corvane::createAgentState() {
  if (agentState())
    return;
  installAgentState(new AgentState, [](AgentState *state) { delete state; });
}
