// The conditions that name arguments: restrict pointers, and divisible scalars.
#pragma once

#include "variants/Transform.h"

#include "llvm/ADT/ArrayRef.h"

#include <map>
#include <set>

namespace llvm {

/// The arguments that a variant's generator assumed to be restrict pointers.
/// Part of a variant's name and order, but no test at launch.
///
/// Keeps the base's `precedes`, so that no two are ever equivalent and each one
/// in a name stays in the record.
struct RestrictArgs : Transform {
  std::set<std::uint32_t> indices; ///< argument indices

  RestrictArgs() : Transform(RestrictKind, 0) {}

  std::string specText() const override;
  std::unique_ptr<Transform> clone() const override;
};

/// Arguments that must be multiples of a divisor when the variant is launched.
struct DivisibleArgs : Transform {
  /// Argument index to divisor. A divisor of 0 lets no value pass.
  std::map<std::uint32_t, std::uint32_t> divisors;

  DivisibleArgs() : Transform(DivisibleKind, 0) {}

  /// Takes values of 4 and 8 bytes and reads them as unsigned whatever the
  /// kernel declares: -4 passes a divisor of 3, because 4294967292 does.
  bool acceptsArgument(std::uint32_t index, std::size_t size,
                       const void *value) const override;
  std::string specText() const override;
  std::unique_ptr<Transform> clone() const override;
  bool precedes(const Transform &other) const override;
};

} // namespace llvm

namespace corvane {

/// The condition that an item of a spec makes: null unless the letter is 'r'.
std::unique_ptr<llvm::Transform>
makeRestrictArgs(char letter, llvm::ArrayRef<std::uint32_t> numbers);

/// The condition that an item of a spec makes: null unless the letter is 'd'
/// and the numbers are pairs of index and divisor. The first pair for an index
/// wins.
std::unique_ptr<llvm::Transform>
makeDivisibleArgs(char letter, llvm::ArrayRef<std::uint32_t> numbers);

} // namespace corvane
