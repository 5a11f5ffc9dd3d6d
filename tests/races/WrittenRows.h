// The rows of a raw timing log, held against what really ran.

#pragma once

#include "tests/support/loose/Board.h"

#include <cstddef>
#include <string>
#include <vector>

namespace corvane::test {

/// Expects that \p log is the header and whole rows, each of a run and none
/// twice. Unless \p someAreLost, every run that was told of before the flush
/// has its row. Returns how many rows there are.
std::size_t expectRows(const std::string &log,
                       const std::vector<loose::ToldRun> &told,
                       bool someAreLost);

} // namespace corvane::test
