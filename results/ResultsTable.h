// The results table: every sample again, by rank and time, outliers marked.

#pragma once

#include "results/Statistics.h"

#include "llvm/Support/raw_ostream.h"

#include <cstdint>

namespace corvane {

/// Rows of the results table. They are counted from 1 and the header is not
/// counted, so a text editor shows each row one line lower.
struct LineRange {
  std::uint64_t first = 1;
  std::uint64_t last = 0;
};

/// Writes the table to a stream that must outlive it.
class ResultsTable {
public:
  /// Writes the header line.
  explicit ResultsTable(llvm::raw_ostream &stream);

  /// Writes the rows of a configuration and returns where they are.
  LineRange addRows(const RankedConfig &config);

private:
  llvm::raw_ostream &out;
  std::uint64_t nextRow = 1;
};

} // namespace corvane
