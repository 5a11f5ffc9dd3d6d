// Keeps the list of builds under way and passes collections between them.

#include "programs/BuildInProgress.h"

#include "programs/ProgramRecord.h"
#include "programs/VariantDiscovery.h"

#include <utility>

using namespace corvane;

// The youngest of the builds under way; null without any. Guarded by the agent
// lock.
static BuildInProgress *youngestBuild = nullptr;

BuildInProgress::BuildInProgress(cl_program builtProgram)
    : program(builtProgram), thread(std::this_thread::get_id()) {
  AgentGuard guard;
  next = std::exchange(youngestBuild, this);
}

BuildInProgress::~BuildInProgress() {
  AgentGuard guard;
  BuildInProgress **link = &youngestBuild;
  while (*link != this)
    link = &(*link)->next;
  *link = next;
}

// A build that this thread's own build has called back into does not count: its
// call cannot end before this one.
BuildInProgress *BuildInProgress::otherOfProgram() const {
  BuildInProgress *build = youngestBuild;
  while (build && (build->program != program || build->thread == thread))
    build = build->next;
  return build;
}

void BuildInProgress::finish(bool collects) {
  AgentGuard guard;
  AgentState *state = agentState();
  if (state)
    forgetProgramHash(*state, program);
  unsigned collections = std::exchange(owedCollections, 0) + (collects ? 1 : 0);
  if (BuildInProgress *other = otherOfProgram()) {
    other->owedCollections += collections;
    return;
  }
  for (; state && collections != 0; --collections)
    collectKernels(*state, program);
}
