// Mends the usual mistakes in a name, and sees whether a variant's comes out.
#include "variants/LookAlike.h"

#include "variants/VariantName.h"

#include "llvm/ADT/StringExtras.h"

#include <vector>

namespace corvane {

static bool isSpec(llvm::StringRef text) {
  ConditionSet conditions;
  return parseSpec(text, conditions);
}

/// A letter, and the numbers after it.
static std::string mendedItem(char letter,
                              const std::vector<llvm::StringRef> &numbers) {
  const char small = llvm::toLower(letter);
  std::string item(1, small);
  // A factor alone is meant for the first dimension.
  const bool isCoarse = small == 'c' || small == 'g' || small == 'l';
  if (isCoarse && numbers.size() == 1)
    item += "0S";
  for (std::size_t i = 0; i != numbers.size(); ++i) {
    if (i != 0)
      item += 'S';
    item += numbers[i];
  }
  return item;
}

/// `text` with small letters for the items and one 'S' between the numbers of
/// each, whatever stood there.
static std::string mendedSpec(llvm::StringRef text) {
  std::string spec;
  while (!text.empty()) {
    const char letter = text.front();
    text = text.drop_front();
    std::vector<llvm::StringRef> numbers;
    while (true) {
      const bool separates = !numbers.empty() && text.size() > 1 &&
                             llvm::isDigit(text[1]) &&
                             llvm::StringRef("SsxX_").contains(text.front());
      const llvm::StringRef number =
          text.drop_front(separates ? 1 : 0).take_while([](char c) {
            return llvm::isDigit(c);
          });
      if (number.empty())
        break;
      numbers.push_back(number);
      text = text.drop_front(number.size() + (separates ? 1 : 0));
    }
    spec += mendedItem(letter, numbers);
  }
  return spec;
}

static bool isLikeTheMarker(llvm::StringRef piece) {
  return llvm::StringRef(piece.lower()).take_front(6) == "coarse";
}

std::string whyNoVariant(llvm::StringRef name) {
  if (parseVariantName(name))
    return {};
  const std::vector<llvm::StringRef> pieces = splitOn(name, '_');
  for (std::size_t i = pieces.size(); i-- > 0;) {
    if (!isLikeTheMarker(pieces[i]))
      continue;
    const std::string base =
        llvm::join(pieces.begin(), pieces.begin() + i, "_");
    const std::string given =
        llvm::join(pieces.begin() + i + 1, pieces.end(), "_");
    const std::string spec = isSpec(given) ? given : mendedSpec(given);
    const bool hasMarker = pieces[i] == "coarsed";
    if (base.empty() || given.empty() || !isSpec(spec))
      return hasMarker ? "a variant is called after its kernel, then "
                         "\"_coarsed_\" and items such as \"g0S4\""
                       : "";
    if (hasMarker && spec != given)
      return "did you mean " + spec + "?";
    return "did you mean " + base + "_coarsed_" + spec + "?";
  }
  return {};
}

} // namespace corvane
