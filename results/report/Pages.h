// The pages of the HTML report, each a function from data to a stream.
//
// All texts are part of the interface, byte for byte. Names from the log may be
// any bytes; the pages escape them (see SafeText.h).

#pragma once

#include "results/Statistics.h"

#include "llvm/Support/raw_ostream.h"

#include <cstdint>
#include <string>

namespace corvane {

/// Rows of the results table. They are counted from 1 and the header is not
/// counted, so a text editor shows each row one line lower.
struct LineRange {
  std::uint64_t first = 1;
  std::uint64_t last = 0;
};

/// The statistics of a configuration; \p lines is where its samples are in the
/// results table.
void writeTablePage(llvm::raw_ostream &out, const RankedConfig &config,
                    LineRange lines);

/// The samples of a configuration as curves, drawn by a script that is loaded
/// from \p installLocation.
void writeGraphPage(llvm::raw_ostream &out, const RankedConfig &config,
                    const std::string &installLocation);

} // namespace corvane
