// Explains in plain text what became of each kernel.

#pragma once

#include "results/overview/Overview.h"

#include "llvm/Support/raw_ostream.h"

namespace corvane {

/// Writes, for each kernel of each program, its variants and, for each of its
/// sizes, which version runs and why the others do not. With a name for
/// \p kernel only those of this name; empty: all. Returns whether there was
/// any.
bool explain(llvm::raw_ostream &out, const Overview &overview,
             llvm::StringRef kernel);

} // namespace corvane
