// Why a plan makes no variant of a kernel.
#pragma once

#include "llvm/ADT/StringRef.h"

#include <optional>
#include <string>

namespace corvane::coarsening {

enum class Reason {
#define REASON(name, code, sentence) name,
#include "coarsening/Reasons.def"
};

/// One word, for programs to read.
llvm::StringRef codeOf(Reason reason);
/// A clause about the kernel, for people to read.
llvm::StringRef sentenceOf(Reason reason);

struct Refusal {
  Reason reason;
  std::string detail; ///< the name or the kind concerned; may be empty
};

/// Keeps the first refusal of several.
class Verdict {
public:
  void refuse(Reason reason, llvm::StringRef detail = "") {
    if (!first)
      first = Refusal{reason, detail.str()};
  }
  void refuse(const std::optional<Refusal> &other) {
    if (!first)
      first = other;
  }
  bool refused() const { return first.has_value(); }
  const std::optional<Refusal> &refusal() const { return first; }

private:
  std::optional<Refusal> first;
};

} // namespace corvane::coarsening
