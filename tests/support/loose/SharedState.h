// The state that the entries of the loose runtime share, without a lock.

#pragma once

#include "tests/support/loose/Inbox.h"

#include <CL/cl.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace corvane::test::loose {

/// How a loose runtime behaves.
struct Behaviour {
  /// Commands run and callbacks are called within the application's calls;
  /// else on two threads of the runtime's, late and in any order.
  bool atOnce = false;
  /// A variant leaves nonsense in its buffers, as if it had gone on from what
  /// another one wrote; else it does what its kernel does.
  bool variantsSpoil = false;
  /// Whether transfers to a buffer are taken for contents that it must have,
  /// because the application's own kernels run more often than it launches
  /// them.
  bool writesAreTruth = false;
  /// Whether to remember what was run; a runtime that forgets keeps nothing.
  bool remembersRuns = true;
  unsigned seed = 1; ///< of the order of late tasks
  /// Called at the start of every launch, on its thread, and before each
  /// callback.
  std::function<void()> beforeLaunch;
  std::function<void()> beforeCallback;
};

enum class Kind { Context, Queue, Program, Kernel, Buffer, Event };
inline constexpr std::size_t kinds = 6;

/// A run whose completion was reported to the agent.
struct ReportedRun {
  std::string row;  ///< its row in the raw timing log, without line feed
  bool beforeFlush; ///< the callback returned before a flush was announced
};

class SharedState {
public:
  explicit SharedState(Behaviour ofRuntime);
  ~SharedState();
  SharedState(const SharedState &) = delete;
  SharedState &operator=(const SharedState &) = delete;

  const Behaviour behaviour;

  /// Work that is done once isDue returns true.
  struct Task {
    std::function<bool()> isDue;
    std::function<void()> work;
  };
  /// Does the task now, or has a thread of the runtime do it later.
  void submit(Task task);
  /// Waits until all tasks are done.
  void drain() const;

  /// A duration in nanoseconds that no other run has.
  cl_ulong nextDuration() {
    return lastDuration.fetch_add(1, std::memory_order_relaxed) + 1;
  }

  void count(Kind kind, long change) {
    living[static_cast<std::size_t>(kind)].fetch_add(change,
                                                     std::memory_order_relaxed);
  }
  long alive(Kind kind) const {
    return living[static_cast<std::size_t>(kind)].load();
  }

  /// Counts the runs of variants.
  void recordVariantRun() {
    variantsRun.fetch_add(1, std::memory_order_relaxed);
  }
  unsigned long variantRuns() const { return variantsRun.load(); }

  /// Records a mistake of the agent or of the application.
  void reportMistake(const char *what) { mistakes.add(what); }
  std::vector<std::string> takeMistakes() { return mistakes.take(); }

  void recordReported(const std::string &row);
  std::vector<ReportedRun> takeReported() { return reported.take(); }

  /// To be called before anything that flushes.
  void announceFlush() {
    flushAnnounced.store(true, std::memory_order_relaxed);
  }
  bool flushIsAnnounced() const {
    return flushAnnounced.load(std::memory_order_relaxed);
  }

private:
  void runTasks(std::size_t runner);

  std::array<std::atomic<long>, kinds> living{};
  std::atomic<cl_ulong> lastDuration{0};
  std::atomic<bool> flushAnnounced{false};
  std::atomic<unsigned long> variantsRun{0};
  Inbox<std::string> mistakes;
  Inbox<ReportedRun> reported;

  static constexpr std::size_t runners = 2;
  std::array<Inbox<Task>, runners> inboxes;
  std::atomic<std::size_t> submitted{0};
  std::atomic<long> unfinished{0};
  std::atomic<bool> over{false};
  std::vector<std::thread> threads;
};

} // namespace corvane::test::loose
