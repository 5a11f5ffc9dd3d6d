// JSON of little nesting, for files that anyone may have edited.

#pragma once

#include "llvm/ADT/StringRef.h"
#include "llvm/Support/JSON.h"

#include <optional>

namespace corvane {

/// The value that \p text is; none if it is no JSON or has so many brackets
/// that reading it might need more stack than there is.
std::optional<llvm::json::Value> parseShallowJson(llvm::StringRef text);

} // namespace corvane
