// Birth and death of the state; the one place that knows every record type.

#include "agent/entry/Records.h"

#include "agent/AgentState.h"
#include "launch/KernelRecord.h"
#include "programs/BufferRecord.h"
#include "programs/ProgramRecord.h"
#include "results/OutputDirectory.h"

using namespace corvane;

AgentState::AgentState()
    : launchRecords(std::make_shared<LaunchHistory>(currentFolder())) {}

AgentState::~AgentState() = default;

void corvane::createAgentState() {
  if (agentState())
    return;
  installAgentState(new AgentState, [](AgentState *state) { delete state; });
}
