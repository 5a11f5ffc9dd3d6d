// Recognises a generated variant by its kernel name.
#pragma once

#include "variants/TransformedKernel.h"

#include "llvm/ADT/StringRef.h"

#include <memory>

namespace corvane {

/// The record of the variant called `name`, or null when that is no variant's
/// name. A variant's name is "base_coarsed_spec"; the base name may hold
/// underscores itself and may be empty.
std::unique_ptr<llvm::TransformedKernelAgent>
parseVariantName(llvm::StringRef name);

/// Puts the conditions that `spec` lists into `into`, which it finds empty.
/// False, with `into` empty again, when the spec breaks the grammar.
bool parseSpec(llvm::StringRef spec, ConditionSet &into);

} // namespace corvane
