// Names that a program does not use yet.
#pragma once

#include "llvm/ADT/StringRef.h"

#include <string>

namespace corvane::coarsening {

/// A few letters that no identifier of `text` contains: every name that
/// contains them is new to the program.
std::string unusedLetters(llvm::StringRef text);

} // namespace corvane::coarsening
