// Kernel names that were probably meant to be a variant's.
#pragma once

#include "llvm/ADT/StringRef.h"

#include <string>

namespace corvane {

/// Why the kernel called `name` is no variant although its name looks like
/// one's: a sentence for people, such as "did you mean g0S4?". Empty for a
/// variant's name and for one that does not look so.
std::string whyNoVariant(llvm::StringRef name);

} // namespace corvane
