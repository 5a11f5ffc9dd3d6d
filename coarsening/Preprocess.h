// Expands a program's macros and includes.
#pragma once

#include "coarsening/BuildOptions.h"
#include "coarsening/Frontend.h"

#include "llvm/ADT/StringRef.h"

#include <optional>
#include <string>
#include <vector>

namespace corvane::coarsening {

struct Preprocessed {
  std::string text; ///< with the names that the compiler's header defines

  /// A condition for #if, true where the compiler's own macros are as they were
  /// here. It has to be asked before the program's first line, because the
  /// program may define those macros itself.
  std::string condition;

  std::vector<std::string>
      macros; ///< what the program's text and options define
  std::vector<std::string> included; ///< files, in order
};

/// Preprocesses `source`. On failure `error` is set and the result is empty.
Preprocessed preprocess(llvm::StringRef source, const BuildOptions &options,
                        std::optional<ProgramError> &error);

} // namespace corvane::coarsening
