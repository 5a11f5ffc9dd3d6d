// The agent lock, and how deep its holder stands in guards.

#include "agent/AgentLock.h"

#include "agent/AgentState.h"

#include "llvm/Support/ManagedStatic.h"

using namespace corvane;

static llvm::ManagedStatic<llvm::sys::Mutex> theLock;

// How many guards the holder has open; touched only with the lock held.
static unsigned openGuards = 0;

llvm::sys::Mutex &corvane::agentLock() { return *theLock; }

AgentGuard::AgentGuard() {
  agentLock().lock();
  ++openGuards;
}

AgentGuard::~AgentGuard() {
  --openGuards;
  agentLock().unlock();
  if (hasRetiredStates())
    buryRetiredStates();
}

OnlyGuard::OnlyGuard() : held(agentLock().try_lock()) {
  if (held && openGuards != 0) {
    agentLock().unlock();
    held = false;
  }
  if (held)
    ++openGuards;
}

OnlyGuard::~OnlyGuard() {
  if (!held)
    return;
  --openGuards;
  agentLock().unlock();
}
