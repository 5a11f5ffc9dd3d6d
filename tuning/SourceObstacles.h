// Finds in a program's source what forbids running its kernels more than once.

#pragma once

#include "llvm/ADT/StringRef.h"

namespace corvane {

/// Why kernels of a program with this OpenCL C source cannot be run repeatedly
/// and compared: they may print, have writable program-scope variables, use
/// pipes or enqueue kernels themselves. A short text such as "the program
/// prints"; empty when nothing of that kind is seen.
///
/// The source is read without its macros and included files. In doubt there is
/// an obstacle: a name is enough, whether or not a kernel reaches it.
llvm::StringRef obstacleInSource(llvm::StringRef source);

} // namespace corvane
