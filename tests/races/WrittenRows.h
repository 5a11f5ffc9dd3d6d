// Checks what the agent has written against the runs that took place.

#pragma once

#include "tests/support/TempFolder.h"
#include "tests/support/loose/SharedState.h"

#include <cstddef>
#include <string>
#include <vector>

namespace corvane::test {

/// Expects that \p log is the header and whole rows, each of a run and none
/// twice. Unless \p someAreLost, every run whose completion was reported before
/// the flush has its row. Returns how many rows there are.
std::size_t expectRows(const std::string &log,
                       const std::vector<loose::ReportedRun> &reported,
                       bool someAreLost);

/// Expects that each run folder of \p tunedFolder has a record whose every line
/// can be read. It may lack its end: the agent does not wait for a lock to
/// write it. Returns how many samples there are.
std::size_t expectRecords(const TempFolder &tunedFolder);

} // namespace corvane::test
