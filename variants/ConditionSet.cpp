// Turns the order of conditions into one that a standard set can rely on.
#include "variants/ConditionSet.h"

#include <utility>

namespace corvane {

bool ConditionSet::EntryOrder::operator()(const Entry &a,
                                          const Entry &b) const {
  const bool aFirst = TransformOrder()(*a.condition, *b.condition);
  const bool bFirst = TransformOrder()(*b.condition, *a.condition);
  // Both claim to be first. Letting the newer one win is what makes a variant's
  // name come back with its restrictions in place: they pass through two sets,
  // each of which turns them round.
  if (aFirst && bFirst)
    return a.arrival > b.arrival;
  return aFirst;
}

void ConditionSet::insert(std::unique_ptr<llvm::Transform> condition) {
  entries.insert(Entry{std::move(condition), arrivals++});
}

} // namespace corvane
