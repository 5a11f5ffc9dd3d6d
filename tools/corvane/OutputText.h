// Writes files whole or not at all.

#pragma once

#include "llvm/ADT/STLExtras.h"
#include "llvm/ADT/StringRef.h"
#include "llvm/Support/Error.h"
#include "llvm/Support/raw_ostream.h"

#include <string>

namespace corvane {

/// Replaces \p file in one step by what \p write writes: whoever reads it at
/// the same time gets the old one or the new one, whole. "-" is the standard
/// output.
llvm::Error replaceFile(const std::string &file,
                        llvm::function_ref<void(llvm::raw_ostream &)> write);
llvm::Error replaceFile(const std::string &file, llvm::StringRef text);

} // namespace corvane
