// What the entries of the loose runtime share, without a lock.

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

/// What a runtime is like.
struct Nature {
  /// Commands run and callbacks are called within the application's calls;
  /// else on two threads of the runtime's, late and in any order.
  bool atOnce = false;
  /// A variant leaves nonsense in its buffers, as if it had gone on from what
  /// another one wrote; else it does what its kernel does.
  bool variantsSpoil = false;
  /// Whether to remember what was run; a runtime that forgets keeps nothing.
  bool remembersRuns = true;
  unsigned seed = 1; ///< of the order in which things happen late
  /// Run at the start of every launch, on its thread, and before each callback.
  std::function<void()> beforeLaunch;
  std::function<void()> beforeCallback;
};

enum class Kind { Context, Queue, Program, Kernel, Buffer, Event };
inline constexpr std::size_t kinds = 6;

/// A run whose completion the agent has been told of.
struct ToldRun {
  std::string row;  ///< what the raw timing log should say, without line feed
  bool beforeFlush; ///< told to the end before a flush was asked for
};

class Board {
public:
  explicit Board(Nature ofRuntime);
  ~Board();
  Board(const Board &) = delete;
  Board &operator=(const Board &) = delete;

  const Nature nature;

  /// Something that waits until isDue, and then is done.
  struct Errand {
    std::function<bool()> isDue;
    std::function<void()> work;
  };
  /// Does the errand now, or has a thread of the runtime's do it one day.
  void submit(Errand errand);
  /// Waits until all errands are done.
  void drain() const;

  /// A number of nanoseconds that no other run takes.
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

  /// Records what the agent or the application should not have done.
  void blame(const char *what) { blames.add(what); }
  std::vector<std::string> takeBlames() { return blames.take(); }

  void noteTold(const std::string &row);
  std::vector<ToldRun> takeTold() { return told.take(); }

  /// To be said before anything that flushes.
  void announceFlush() {
    flushAnnounced.store(true, std::memory_order_relaxed);
  }
  bool flushIsAnnounced() const {
    return flushAnnounced.load(std::memory_order_relaxed);
  }

private:
  void runErrands(std::size_t runner);

  std::array<std::atomic<long>, kinds> living{};
  std::atomic<cl_ulong> lastDuration{0};
  std::atomic<bool> flushAnnounced{false};
  Inbox<std::string> blames;
  Inbox<ToldRun> told;

  static constexpr std::size_t runners = 2;
  std::array<Inbox<Errand>, runners> inboxes;
  std::atomic<std::size_t> submitted{0};
  std::atomic<long> unfinished{0};
  std::atomic<bool> over{false};
  std::vector<std::thread> threads;
};

} // namespace corvane::test::loose
