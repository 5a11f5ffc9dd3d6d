// How texts begin and end. LLVM renamed its own functions between the versions
// that this library is built with.

#pragma once

#include "llvm/ADT/StringRef.h"

namespace corvane::coarsening {

inline bool startsWith(llvm::StringRef text, llvm::StringRef prefix) {
  return text.take_front(prefix.size()) == prefix;
}

inline bool endsWith(llvm::StringRef text, llvm::StringRef suffix) {
  return text.take_back(suffix.size()) == suffix;
}

} // namespace corvane::coarsening
