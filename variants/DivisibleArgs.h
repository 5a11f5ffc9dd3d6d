// The condition that scalar arguments are divisible by given numbers.
#pragma once

#include "variants/Transform.h"

#include "llvm/ADT/ArrayRef.h"

#include <map>

namespace llvm {

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

/// The condition that an item of a spec makes: null unless the letter is 'd'
/// and the numbers are pairs of index and divisor. The first pair for an index
/// wins.
std::unique_ptr<llvm::Transform>
makeDivisibleArgs(char letter, llvm::ArrayRef<std::uint32_t> numbers);

} // namespace corvane
