// Tests arguments, and makes their conditions from items of a name and back.
#include "variants/ArgumentConditions.h"

#include "variants/VariantName.h"

#include <cstring>
#include <vector>

namespace llvm {

std::string RestrictArgs::specText() const {
  return corvane::itemText(
      'r', std::vector<std::uint32_t>(indices.begin(), indices.end()));
}

std::unique_ptr<Transform> RestrictArgs::clone() const {
  return std::make_unique<RestrictArgs>(*this);
}

/// Tests a value that may lie at any address, as the application left it.
template <typename Unsigned>
static bool isMultiple(const void *value, std::uint32_t divisor) {
  Unsigned number;
  std::memcpy(&number, value, sizeof number);
  return number % divisor == 0;
}

bool DivisibleArgs::acceptsArgument(std::uint32_t index, std::size_t size,
                                    const void *value) const {
  const auto found = divisors.find(index);
  if (found == divisors.end())
    return true;

  const std::uint32_t divisor = found->second;
  if (divisor == 0 || !value)
    return false;
  if (size == sizeof(std::uint32_t))
    return isMultiple<std::uint32_t>(value, divisor);
  if (size == sizeof(std::uint64_t))
    return isMultiple<std::uint64_t>(value, divisor);
  return false;
}

std::string DivisibleArgs::specText() const {
  std::vector<std::uint32_t> numbers;
  for (const auto &[index, divisor] : divisors) {
    numbers.push_back(index);
    numbers.push_back(divisor);
  }
  return corvane::itemText('d', numbers);
}

std::unique_ptr<Transform> DivisibleArgs::clone() const {
  return std::make_unique<DivisibleArgs>(*this);
}

bool DivisibleArgs::precedes(const Transform &other) const {
  const auto &that = static_cast<const DivisibleArgs &>(other);
  if (divisors.size() != that.divisors.size())
    return divisors.size() < that.divisors.size();
  // Pair by pair: at the first argument where the two differ, the one that has
  // a divisor comes first, or the one whose divisor is lower.
  return divisors < that.divisors;
}

} // namespace llvm

std::unique_ptr<llvm::Transform>
corvane::makeRestrictArgs(char letter, llvm::ArrayRef<std::uint32_t> numbers) {
  if (letter != 'r')
    return nullptr;

  auto condition = std::make_unique<llvm::RestrictArgs>();
  condition->indices.insert(numbers.begin(), numbers.end());
  return condition;
}

std::unique_ptr<llvm::Transform>
corvane::makeDivisibleArgs(char letter, llvm::ArrayRef<std::uint32_t> numbers) {
  if (letter != 'd' || numbers.size() % 2 != 0)
    return nullptr;

  auto condition = std::make_unique<llvm::DivisibleArgs>();
  for (std::size_t pair = 0; pair < numbers.size(); pair += 2)
    condition->divisors.emplace(numbers[pair], numbers[pair + 1]);
  return condition;
}
