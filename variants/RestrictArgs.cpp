// Writes the restricted arguments as an item of a name, and copies them.
#include "variants/RestrictArgs.h"

#include "variants/SpecText.h"

#include <vector>

namespace llvm {

std::string RestrictArgs::specText() const {
  return corvane::itemText(
      'r', std::vector<std::uint32_t>(indices.begin(), indices.end()));
}

std::unique_ptr<Transform> RestrictArgs::clone() const {
  return std::make_unique<RestrictArgs>(*this);
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
