// Groups the rows of the raw timing log by launch configuration and version.

#pragma once

#include "results/ConfigResults.h"

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace corvane {

/// Takes rows in and gives their times to the configurations when all are
/// there.
///
/// Until then they stay as they came: going back and forth between thousands of
/// lists would take longer than all else.
class RowCollector {
public:
  RowCollector() = default;
  RowCollector(const RowCollector &) = delete;
  RowCollector &operator=(const RowCollector &) = delete;

  /// Adds a line of the log, without its line feed. The text is not kept.
  void add(std::string_view line);

  /// Adds the configurations and their samples to \p configs, in the order in
  /// which they first occurred. Once an object.
  void moveTo(std::vector<ConfigResults> &configs);

private:
  /// The rows that differ in their time alone.
  struct Kind {
    std::string text;         ///< the first eight fields, with their commas
    Kind *follower = nullptr; ///< of the row behind the last of these rows
    std::size_t count = 0;
    double *nextSample = nullptr; ///< where the next row's time is to go
  };
  struct Row {
    Kind *kind;
    double time;
  };

  Kind &kindOf(std::string_view line);
  std::string_view textOfKind(std::string_view line);
  Kind &findOrAdd(std::string_view text);

  std::deque<Row> rows;   ///< in pieces, so that none is copied when it grows
  std::deque<Kind> kinds; ///< in the order of their first rows
  std::unordered_map<std::string_view, Kind *> kindsByText;
  std::string padded;        ///< kept for its memory
  std::size_t timeBegin = 0; ///< in the line that was looked at last
  Kind start;                ///< before the first row
  Kind *last = &start;
};

} // namespace corvane
