// Defines the agent lock and counts the guards that its holder has open.

#include "agent/AgentLock.h"

using namespace corvane;

using detail::openGuards;

llvm::ManagedStatic<llvm::sys::Mutex> detail::theAgentLock;
unsigned detail::openGuards = 0;

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
