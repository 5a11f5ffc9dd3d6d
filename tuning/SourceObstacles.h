// Finds in a program's source what forbids running its kernels more than once.

#pragma once

#include "llvm/ADT/StringRef.h"

#include <string>
#include <vector>

namespace corvane {

/// Why kernels of a program with this OpenCL C source cannot be run repeatedly
/// and compared: they may print, have variables that outlive a launch, use
/// pipes or enqueue kernels themselves. A short text such as "the program
/// prints"; empty when nothing of that kind is seen.
///
/// The source is read without its macros and included files. In doubt there is
/// an obstacle: a name is enough, whether or not a kernel reaches it.
llvm::StringRef obstacleInSource(llvm::StringRef source);

/// The same for the options of a build, which may define macros.
llvm::StringRef obstacleInOptions(llvm::StringRef options);

/// What an include directive says.
struct IncludeDirective {
  std::string name; ///< of the file; empty: only macros name it
  bool isQuoted;    ///< else in angle brackets
};

/// Those of \p source in their order, whether or not a condition leaves one
/// out.
std::vector<IncludeDirective> includeDirectives(llvm::StringRef source);

} // namespace corvane
