// An overview as files for other programs.

#pragma once

#include "results/overview/Overview.h"

#include "llvm/Support/raw_ostream.h"

namespace corvane {

/// The version of the JSON format; readers refuse a higher one.
inline constexpr unsigned overviewFormatVersion = 1;

/// Everything that is in an overview, as one object (docs/report-data.md). The
/// same overview gives the same bytes, whatever the locale.
void writeOverviewJson(llvm::raw_ostream &out, const Overview &overview);

/// A row for each version of each configuration under a line of titles, by RFC
/// 4180, with line feeds.
void writeOverviewCsv(llvm::raw_ostream &out, const Overview &overview);

/// The results of auto-tuning by the schema T4, version 1.0.0: an object for
/// each version of each configuration that ran.
void writeOverviewT4(llvm::raw_ostream &out, const Overview &overview);

} // namespace corvane
