// One round: from load to unload, with an application of many threads.

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

  /// Runs the threads and the turn, ends everything, and checks it. Returns how
  /// many rows the raw timing log has.
  std::size_t play();

  const DispatchTable &cl() const { return runtime.cl(); }
  cl_context context() const { return runtime.context(); }

  const RoundPlan plan;

  /// A program that is built once, and a kernel of it whose arguments are set
  /// once.
  cl_program program = nullptr;
  cl_kernel sharedKernel = nullptr;
  cl_command_queue queue = nullptr;

  /// Stores a buffer and returns the one that another thread has stored, or
  /// null.
  cl_mem swap(std::size_t slot, cl_mem buffer) {
    return slots[slot].exchange(buffer, std::memory_order_acq_rel);
  }
  static constexpr std::size_t slotCount = 4;

  /// Retains and releases the context, which flushes in some rounds.
  void releaseContext();

  /// Does what the plan's turn says. For one thread.
  void takeTurn();

  /// Whether the agent may have forgotten all it knew.
  bool mayHaveForgotten() const { return runtime.shared.flushIsAnnounced(); }
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
