// One life of the agent below an application of many threads.

#pragma once

#include "tests/races/RoundPlan.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/TempFolder.h"
#include "tests/support/loose/Runtime.h"

#include <CL/cl.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <list>

namespace corvane::test {

/// What the threads of an application share, and all that is checked when they
/// are done. The environment is not changed while they are at work.
class Round {
public:
  explicit Round(const RoundPlan &roundPlan);

  /// Has the threads live, the turn come and everything end, and checks it all.
  /// Returns how many rows the raw timing log has.
  std::size_t play();

  const DispatchTable &cl() const { return runtime.cl(); }
  cl_context context() const { return runtime.context(); }

  const RoundPlan plan;

  /// Built once, and a kernel of it whose arguments are set for good.
  cl_program program = nullptr;
  cl_kernel sharedKernel = nullptr;
  cl_command_queue queue = nullptr;

  /// Takes a buffer over and returns one that another thread has left, or null.
  cl_mem swap(std::size_t slot, cl_mem buffer) {
    return slots[slot].exchange(buffer, std::memory_order_acq_rel);
  }
  static constexpr std::size_t slotCount = 4;

  /// One reference more and one less, which flushes in some rounds.
  void releaseContext();

  /// What this round has beside work, for one thread to do.
  void takeTurn();

  /// Whether the agent may have forgotten all it knew.
  bool mayHaveForgotten() const { return runtime.board.flushIsAnnounced(); }
  bool reloads() const {
    return plan.turn == Turn::SecondLoad || plan.turn == Turn::UnloadAndLoad;
  }
  bool flushesWithContext() const {
    return plan.turn == Turn::ContextReleases ||
           plan.turn == Turn::ContextAndUnload;
  }

private:
  void prepare();
  void finish();
  std::size_t check();

  TempFolder folder;
  std::list<EnvGuard> environment;
  loose::Runtime runtime;
  std::array<std::atomic<cl_mem>, slotCount> slots{};
};

} // namespace corvane::test
