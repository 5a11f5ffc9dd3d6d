// Checks a raw timing log against the runs that took place.

#pragma once

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

} // namespace corvane::test
