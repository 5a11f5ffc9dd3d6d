// Reads and writes the items of a variant's spec.
#pragma once

#include "llvm/ADT/ArrayRef.h"
#include "llvm/ADT/StringRef.h"

#include <cstdint>
#include <string>
#include <vector>

namespace corvane {

/// The pieces of `text` between separators, as views into it. As lines of a
/// file: one separator at the end opens no further piece, and an empty text has
/// none.
std::vector<llvm::StringRef> splitOn(llvm::StringRef text, char separator);

/// Reads a decimal number as C's atoi does: white space, a sign, digits, and
/// the rest ignored; no digits are 0. Knows no locale. A number beyond the
/// range of int is the nearest end of that range.
std::int32_t readNumber(llvm::StringRef text);

/// Reads numbers separated by 'S'. A negative one keeps its bit pattern.
std::vector<std::uint32_t> readNumbers(llvm::StringRef text);

/// One item of a spec: the letter, then the numbers separated by 'S'.
std::string itemText(char letter, llvm::ArrayRef<std::uint32_t> numbers);

} // namespace corvane
