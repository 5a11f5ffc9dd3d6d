// The pages of the HTML report, each a function from data to a stream.
//
// All texts are part of the interface, byte for byte. Names from the log may be
// any bytes; the pages escape them (see SafeText.h).

#pragma once

#include "results/ResultsTable.h"
#include "results/Statistics.h"

#include "llvm/Support/raw_ostream.h"

#include <string>
#include <vector>

namespace corvane {

/// One line of the list of configurations.
struct IndexEntry {
  std::string title;
  std::string page; ///< file name, as PageNames made it
};

/// The statistics of a configuration; \p lines is where its samples are in the
/// results table.
void writeTablePage(llvm::raw_ostream &out, const RankedConfig &config,
                    LineRange lines);

/// The samples of a configuration as curves, drawn by a script that is loaded
/// from \p installLocation.
void writeGraphPage(llvm::raw_ostream &out, const RankedConfig &config,
                    const std::string &installLocation);

/// The table page above the graph page, both called after \p base.
void writeFramePage(llvm::raw_ostream &out, const std::string &base);

/// The list of all configurations.
void writeIndexPage(llvm::raw_ostream &out,
                    const std::vector<IndexEntry> &entries);

/// The index beside the first configuration.
void writeMainPage(llvm::raw_ostream &out,
                   const std::vector<IndexEntry> &entries);

} // namespace corvane
