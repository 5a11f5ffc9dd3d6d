// The process-wide lock that guards the agent's bookkeeping.

#pragma once

#include "llvm/Support/Mutex.h"

namespace corvane {

/// The lock itself: recursive, made by its first user, never destroyed by us,
/// because a hook may still run while the process ends.
llvm::sys::Mutex &agentLock();

/// Holds the agent lock.
///
/// Hooks hold it over their calls into the runtime, so that what they record is
/// what the runtime did, in the same order. It is recursive because the runtime
/// may call the application back, and the application us. Take no leaf lock
/// (see README.md) around a guard; the other way round is the rule.
///
/// The outermost guard of a thread buries what a flush elsewhere has retired
/// meanwhile (see AgentState.h).
class AgentGuard {
public:
  AgentGuard();
  ~AgentGuard();
  AgentGuard(const AgentGuard &) = delete;
  AgentGuard &operator=(const AgentGuard &) = delete;
};

/// Takes the lock if nobody holds it, this thread's own guards included.
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
