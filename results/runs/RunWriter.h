// Makes the text of a line of a run record.

#pragma once

#include "results/runs/RunLines.h"

#include "llvm/ADT/StringRef.h"

#include <string>

namespace corvane {

/// \p line as one JSON object and a line feed, without another line feed in it.
/// To be written with one write, so that a process that is killed leaves whole
/// lines. Any thread. Texts may hold any bytes; what is no UTF-8 is replaced.
std::string lineText(const RunLine &line);

/// How the file names a version: the spec text, or "baseline" for the empty
/// name. Lasts as long as \p version.
llvm::StringRef versionInFile(llvm::StringRef version);

} // namespace corvane
