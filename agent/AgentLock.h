// The process-wide lock that guards the agent's bookkeeping.

#pragma once

#include "agent/AgentState.h"

#include "llvm/Support/ManagedStatic.h"
#include "llvm/Support/Mutex.h"

namespace corvane {

namespace detail {
extern llvm::ManagedStatic<llvm::sys::Mutex> theAgentLock;
/// How many guards the thread that holds the lock has open; touched only with
/// the lock held.
extern unsigned openGuards;
} // namespace detail

/// The lock itself: recursive, made by its first user, never destroyed by us,
/// because a hook may still run while the process ends.
inline llvm::sys::Mutex &agentLock() { return *detail::theAgentLock; }

/// Holds the agent lock.
///
/// Hooks hold it over their calls into the runtime, so that what they record is
/// what the runtime did, in the same order; not over builds and links, which
/// take long and may need another thread of the application's. It is recursive
/// because the runtime may call the application back, and the application us.
/// Take no leaf lock (see README.md) around a guard; the other way round is the
/// rule.
///
/// When the outermost guard of a thread ends, it destroys the states that a
/// flush on another thread has retired meanwhile (see AgentState.h).
class AgentGuard {
public:
  AgentGuard() {
    agentLock().lock();
    ++detail::openGuards;
  }
  ~AgentGuard() {
    --detail::openGuards;
    agentLock().unlock();
    if (hasRetiredStates())
      destroyRetiredStates();
  }
  AgentGuard(const AgentGuard &) = delete;
  AgentGuard &operator=(const AgentGuard &) = delete;
};

/// Takes the lock if it is free: neither another thread nor an outer guard of
/// this thread holds it.
class OnlyGuard {
public:
  OnlyGuard();
  ~OnlyGuard();
  OnlyGuard(const OnlyGuard &) = delete;
  OnlyGuard &operator=(const OnlyGuard &) = delete;

  explicit operator bool() const { return held; }

private:
  bool held;
};

} // namespace corvane
