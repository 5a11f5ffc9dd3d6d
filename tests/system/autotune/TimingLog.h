// The raw timing log as a test sees it: how often each version was timed.

#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace corvane::test {

/// How often each version of a launch was timed. A launch is the text of the
/// first seven fields of its rows.
using RowCounts = std::map<std::string, std::map<std::string, size_t>>;

struct TimingLog {
  RowCounts rows;
  std::vector<double> times; ///< of all rows, in microseconds
};

/// Reads a whole log; anything but the header and valid rows, each ended by a
/// line feed, fails the test.
TimingLog readTimingLog(const std::string &text);

/// The same for a log whose writer was killed: what follows the last line feed
/// is left out, and a log without any may hold a part of the header.
TimingLog readKilledLog(const std::string &text);

} // namespace corvane::test
