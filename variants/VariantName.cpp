// Splits a kernel name into base name, marker and the items of its spec.
#include "variants/VariantName.h"

#include "variants/ArgumentConditions.h"
#include "variants/CoarseRequest.h"
#include "variants/SpecText.h"

#include "llvm/ADT/StringExtras.h"

namespace corvane {

static bool isItemLetter(char c) { return c >= 'a' && c <= 'z'; }

/// The condition that one item makes, or null for an unknown letter.
static std::unique_ptr<llvm::Transform>
makeCondition(char letter, llvm::ArrayRef<std::uint32_t> numbers) {
  if (auto condition = makeCoarseRequest(letter, numbers))
    return condition;
  if (auto condition = makeRestrictArgs(letter, numbers))
    return condition;
  return makeDivisibleArgs(letter, numbers);
}

bool parseSpec(llvm::StringRef spec, ConditionSet &into) {
  if (spec.empty() || !isItemLetter(spec.front()))
    return false;

  while (!spec.empty()) {
    const char letter = spec.front();
    const llvm::StringRef numbers = spec.drop_front().take_until(isItemLetter);
    auto condition = makeCondition(letter, readNumbers(numbers));
    if (!condition) {
      into.clear();
      return false;
    }
    into.insert(std::move(condition));
    spec = spec.drop_front(1 + numbers.size());
  }
  return true;
}

std::unique_ptr<llvm::TransformedKernelAgent>
parseVariantName(llvm::StringRef name) {
  const std::vector<llvm::StringRef> pieces = splitOn(name, '_');
  if (pieces.size() < 3 || pieces[pieces.size() - 2] != "coarsed")
    return nullptr;

  ConditionSet conditions;
  if (!parseSpec(pieces.back(), conditions))
    return nullptr;
  return std::make_unique<llvm::TransformedKernelAgent>(
      llvm::join(pieces.begin(), pieces.end() - 2, "_"), conditions);
}

} // namespace corvane
