// The names of generated variants: reads them, and writes their items.
#pragma once

#include "variants/TransformedKernel.h"

#include "llvm/ADT/ArrayRef.h"
#include "llvm/ADT/StringRef.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace corvane {

/// The record of the variant called `name`, or null when that is no variant's
/// name. A variant's name is "base_coarsed_spec"; the base name may hold
/// underscores itself and may be empty.
std::unique_ptr<llvm::TransformedKernelAgent>
parseVariantName(llvm::StringRef name);

/// Puts the conditions that `spec` lists into `into`, which it finds empty.
/// False, with `into` empty again, when the spec breaks the grammar.
bool parseSpec(llvm::StringRef spec, ConditionSet &into);

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
