// One line at the bottom of a terminal that other programs write to as well.

#pragma once

#include "tools/corvane/Terminal.h"

#include <string>

namespace corvane {

/// Keeps the last line of the terminal for itself: the rest scrolls by itself,
/// so that what a program writes meanwhile stays whole, half lines too.
/// Without a terminal it does nothing.
class StatusLine {
public:
  StatusLine() = default;
  /// Wipes the line and gives it back.
  ~StatusLine();
  StatusLine(const StatusLine &) = delete;
  StatusLine &operator=(const StatusLine &) = delete;

  /// Shows \p text, cut to the terminal's width.
  void show(std::string text);

private:
  unsigned rows = 0; ///< of the terminal when the line was last kept; 0: never
  std::string shown;
};

} // namespace corvane
