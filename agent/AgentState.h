// Declares the agent's bookkeeping, the lock that guards it, and its lifetime.

#pragma once

#include "agent/RecordTable.h"

#include "llvm/Support/ManagedStatic.h"
#include "llvm/Support/Mutex.h"

#include <CL/cl.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <sstream>

namespace corvane {

struct BufferRecord;
struct KernelRecord;
struct LaunchHistory;
struct ProgramRecord;
class AppliedProfile;
struct ProfileSummary;
class Tuning;
class TuningRun;

/// Everything that is remembered between load and flush. Records are defined by
/// the folders that keep them; agent/entry/ knows all and makes the state.
struct AgentState {
  AgentState();
  ~AgentState();

  /// Written under both locks, so either is enough for reading.
  std::mutex programsLock;
  RecordTable<cl_program, ProgramRecord> programs;

  /// Guarded by the agent lock.
  RecordTable<cl_kernel, KernelRecord> kernels;

  /// A leaf lock: buffers come and go on threads of the runtime.
  std::mutex buffersLock;
  RecordTable<cl_mem, BufferRecord> buffers;

  /// Never null; outlives the state while runs are under way.
  std::shared_ptr<LaunchHistory> launchRecords;

  /// Null unless this process applies a profile; guarded by the agent lock.
  std::shared_ptr<AppliedProfile> profile;
  /// Null unless what the profile does is to be told at the end.
  std::shared_ptr<ProfileSummary> profileSummary;

  /// Null unless this process tunes. Jobs under way share it as well; the run
  /// is a part of it.
  std::shared_ptr<Tuning> tuning;
  std::shared_ptr<TuningRun> tuningRun;

  /// Reserved for hooks that will gather text over several calls; unused.
  std::stringstream text;

  /// For the functions below only.
  void (*destroy)(AgentState *) = nullptr;
  AgentState *nextRetired = nullptr;
};

namespace detail {
// In the header, so that every call can look at them inline.
extern std::atomic<AgentState *> currentState;
extern std::atomic<AgentState *> retiredStates;

extern llvm::ManagedStatic<llvm::sys::Mutex> theAgentLock;
/// How many guards the thread that holds the lock has open; touched only with
/// the lock held.
extern unsigned openGuards;
} // namespace detail

/// The state; null before the load and after the flush.
///
/// It stays alive for as long as the caller holds an AgentGuard or a StatePin
/// that it opened before asking, even if a flush elsewhere retires it.
inline AgentState *agentState() { return detail::currentState.load(); }

/// Keeps the state alive in places that run without the agent lock.
class StatePin {
public:
  StatePin();
  ~StatePin();
  StatePin(const StatePin &) = delete;
  StatePin &operator=(const StatePin &) = delete;
};

/// Makes \p state the state, which \p destroy will delete when it is retired
/// and unused. Hold the agent lock; there must be no state yet.
void installAgentState(AgentState *state, void (*destroy)(AgentState *));

/// Takes the state away, so that no thread finds it any more, and returns it;
/// null if there is none or another thread was faster. The caller must hand it
/// on to retireAgentState. Waits for nothing, so that it can be called while
/// the process ends.
AgentState *takeAgentState();

/// Destroys \p state once no thread uses it any more: now, or when the last
/// guard or pin is gone. Waits for nothing.
void retireAgentState(AgentState *state);

/// Whether a retired state still waits for its last user.
inline bool hasRetiredStates() {
  return detail::retiredStates.load() != nullptr;
}

/// Destroys the retired states, unless another thread may still use one.
void destroyRetiredStates();

/// The agent lock: recursive, made by its first user, never destroyed by us,
/// because a hook may still run while the process ends.
inline llvm::sys::Mutex &agentLock() { return *detail::theAgentLock; }

/// Holds the agent lock.
///
/// Hooks hold it over their calls into the runtime, so that what they record is
/// what the runtime did, in the same order; not over builds and links, which
/// take long and may need another thread of the application's. It is recursive
/// because the runtime may call the application back, and the application us.
/// Never open a guard while you hold a leaf lock (agent/README.md); take leaf
/// locks within a guard.
///
/// When the outermost guard of a thread ends, it destroys the states that a
/// flush on another thread has retired meanwhile.
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
