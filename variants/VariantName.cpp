// Splits names into base name, marker and items, and converts their numbers.
#include "variants/VariantName.h"

#include "variants/ArgumentConditions.h"
#include "variants/CoarseRequest.h"

#include "llvm/ADT/StringExtras.h"

#include <algorithm>
#include <limits>

namespace corvane {

static constexpr char numberSeparator = 'S';

std::vector<llvm::StringRef> splitOn(llvm::StringRef text, char separator) {
  std::vector<llvm::StringRef> pieces;
  while (!text.empty()) {
    const auto [piece, rest] = text.split(separator);
    pieces.push_back(piece);
    text = rest;
  }
  return pieces;
}

std::int32_t readNumber(llvm::StringRef text) {
  using Limits = std::numeric_limits<std::int32_t>;

  text = text.drop_while([](char c) { return llvm::isSpace(c); });
  const bool negative = text.consume_front("-");
  if (!negative)
    text.consume_front("+");

  const std::int64_t most =
      negative ? -std::int64_t{Limits::min()} : std::int64_t{Limits::max()};
  std::int64_t magnitude = 0;
  for (const char digit :
       text.take_while([](char c) { return llvm::isDigit(c); }))
    magnitude = std::min(magnitude * 10 + (digit - '0'), most);
  return static_cast<std::int32_t>(negative ? -magnitude : magnitude);
}

std::vector<std::uint32_t> readNumbers(llvm::StringRef text) {
  std::vector<std::uint32_t> numbers;
  for (const llvm::StringRef piece : splitOn(text, numberSeparator))
    numbers.push_back(static_cast<std::uint32_t>(readNumber(piece)));
  return numbers;
}

std::string itemText(char letter, llvm::ArrayRef<std::uint32_t> numbers) {
  std::string text(1, letter);
  for (const std::uint32_t number : numbers) {
    if (text.size() > 1)
      text += numberSeparator;
    text += std::to_string(number);
  }
  return text;
}

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
