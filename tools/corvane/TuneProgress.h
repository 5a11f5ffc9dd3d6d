// Shows how far tuning has come while a program runs.

#pragma once

#include "tools/corvane/RunFollower.h"

#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

namespace corvane {

/// A line at the bottom of the terminal, drawn at most five times a second from
/// a thread of its own, until this is destroyed. Nothing where standard error
/// is no terminal.
class TuneProgress {
public:
  /// \p budget is the time that tuning may add, in seconds.
  TuneProgress(const std::string &folder, std::set<std::string> known,
               std::optional<double> budget);
  ~TuneProgress();
  TuneProgress(const TuneProgress &) = delete;
  TuneProgress &operator=(const TuneProgress &) = delete;

private:
  void run();
  std::string text() const;

  RunFollower follower;
  const std::optional<double> mostSeconds;
  std::mutex lock;
  std::condition_variable changed;
  bool isOver = false; ///< guarded by the lock
  std::thread thread;
};

} // namespace corvane
