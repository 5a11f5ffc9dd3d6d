// The options of clBuildProgram that decide what a program's text means.
#pragma once

#include "llvm/ADT/ArrayRef.h"

#include <string>
#include <vector>

namespace corvane::coarsening {

struct BuildOptions {
  std::vector<std::string> preprocessing; ///< -D and -I, as Clang takes them
  std::vector<std::string> language; ///< the standard, and what literals are
};

/// Sorts options as clBuildProgram takes them, each its own word except that -D
/// and -I may be followed by theirs. What only optimises or warns is dropped.
BuildOptions readBuildOptions(llvm::ArrayRef<std::string> words);

} // namespace corvane::coarsening
