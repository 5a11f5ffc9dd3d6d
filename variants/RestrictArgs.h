// The arguments that a variant's generator assumed to be restrict pointers.
#pragma once

#include "variants/Transform.h"

#include "llvm/ADT/ArrayRef.h"

#include <set>

namespace llvm {

/// Names arguments; part of a variant's name and order, but no test at launch.
///
/// Keeps the base's `precedes`, so that no two are ever equivalent and each one
/// in a name stays in the record.
struct RestrictArgs : Transform {
  std::set<std::uint32_t> indices; ///< argument indices

  RestrictArgs() : Transform(RestrictKind, 0) {}

  std::string specText() const override;
  std::unique_ptr<Transform> clone() const override;
};

} // namespace llvm

namespace corvane {

/// The condition that an item of a spec makes: null unless the letter is 'r'.
std::unique_ptr<llvm::Transform>
makeRestrictArgs(char letter, llvm::ArrayRef<std::uint32_t> numbers);

} // namespace corvane
