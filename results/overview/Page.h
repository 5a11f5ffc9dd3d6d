// An overview as a page for a browser.

#pragma once

#include "results/overview/Overview.h"

#include "llvm/Support/raw_ostream.h"

namespace corvane {

/// Writes one HTML file that needs no other: style, script and data are in it.
/// The data are text for the script, which puts it on the page as text only, so
/// names can hold anything.
void writePage(llvm::raw_ostream &out, const Overview &overview);

} // namespace corvane
