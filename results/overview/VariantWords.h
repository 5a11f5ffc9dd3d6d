// Says in words what a variant's spec means.

#pragma once

#include "llvm/ADT/StringRef.h"

#include <string>

namespace corvane {

/// What a variant does other than its kernel, as "each work-item does 4
/// columns"; empty if \p spec is no variant's. The text is ASCII.
std::string variantWords(llvm::StringRef spec);

} // namespace corvane
