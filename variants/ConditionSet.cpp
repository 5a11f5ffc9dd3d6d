// Finds the place of a condition among those that are there already.
#include "variants/ConditionSet.h"

#include "llvm/ADT/STLExtras.h"

#include <utility>

namespace corvane {

// Where both claim to be first, the newer one wins. That is what makes a
// variant's name come back with its restrictions in place: they pass through
// two sets, each of which turns them round.
void ConditionSet::insert(std::unique_ptr<llvm::Transform> condition) {
  const TransformOrder precedes;
  const auto place = llvm::find_if(
      entries, [&](const auto &entry) { return precedes(*condition, *entry); });
  const bool isKnown =
      place != entries.begin() && !precedes(**std::prev(place), *condition);
  if (!isKnown)
    entries.insert(place, std::move(condition));
}

} // namespace corvane
