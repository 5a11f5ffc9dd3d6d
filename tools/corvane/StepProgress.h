// Shows how far a long task has come, on a terminal.

#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace corvane {

/// One line on standard error, "reading run 12 of 400", from the task's second
/// second on and at most five times a second; wiped at the end. Shows nothing
/// where standard error is no terminal.
class StepProgress {
public:
  StepProgress(std::string what, std::size_t stepCount);
  ~StepProgress();
  StepProgress(const StepProgress &) = delete;
  StepProgress &operator=(const StepProgress &) = delete;

  void step();

private:
  using Clock = std::chrono::steady_clock;

  const std::string text;
  const std::size_t count;
  const bool isTerminal;
  Clock::time_point nextDraw;
  std::size_t done = 0;
  bool isDrawn = false;
};

} // namespace corvane
