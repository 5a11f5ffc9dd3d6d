// How far a version's output may be from the original kernel's.

#pragma once

#include "llvm/ADT/StringRef.h"

#include <optional>

namespace corvane {

/// What CORVANE_VERIFY asks for.
struct Tolerance {
  enum class Mode {
    Exact, ///< bit-equal
    Bound, ///< floating-point elements may differ by a part of their value
    Off,   ///< outputs are not compared
  };

  Mode mode = Mode::Exact;
  double bound = 0.0; ///< the part; above 0 and finite in mode Bound, else 0
};

/// Reads "exact", "off" or a bound such as "1e-5", which must be a number above
/// 0 and below 1. Nothing for any other text.
std::optional<Tolerance> parseTolerance(llvm::StringRef text);

} // namespace corvane
