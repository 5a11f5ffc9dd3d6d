// Looks for what forbids running kernels more than once in all of a program's
// text.

#pragma once

#include "llvm/ADT/StringRef.h"

#include <string>

namespace corvane {

/// Why kernels of a program with this source and these build options cannot be
/// run repeatedly and compared; empty if nothing of that kind is seen. Reads
/// the files that the source includes, from the folders that the options name
/// and the current one; in a file that cannot be read there may be anything.
std::string obstacleInProgram(llvm::StringRef source, llvm::StringRef options);

} // namespace corvane
