// Hashes by which programs and files are known in every process.

#pragma once

#include "llvm/ADT/ArrayRef.h"
#include "llvm/ADT/StringRef.h"

#include <string>

namespace corvane {

/// SHA-256 of all \p pieces one after the other, in 64 hexadecimal digits.
std::string sha256Text(llvm::ArrayRef<llvm::StringRef> pieces);

/// The hash of a program in run records and profiles. \p kind is "source" or
/// "binary" and says what \p content is; \p options are those of its build, as
/// the runtime tells them. docs/run-record.md says how it is made.
std::string programHashText(llvm::StringRef kind, llvm::StringRef options,
                            llvm::StringRef content);

/// Whether \p text looks like such a hash. It is then fit for a file name.
bool isHashText(llvm::StringRef text);

} // namespace corvane
