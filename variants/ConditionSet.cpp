// Makes a strict order of TransformOrder, as a standard set needs it.
#include "variants/ConditionSet.h"

#include <utility>

namespace corvane {

bool ConditionSet::EntryOrder::operator()(const Entry &a,
                                          const Entry &b) const {
  const bool aFirst = TransformOrder()(*a.condition, *b.condition);
  const bool bFirst = TransformOrder()(*b.condition, *a.condition);
  // Both claim to be first, and the newer one is put first. A variant's
  // conditions pass through two sets, each of which reverses its restrictions,
  // so the rebuilt name has them in their first order.
  if (aFirst && bFirst)
    return a.arrival > b.arrival;
  return aFirst;
}

void ConditionSet::insert(std::unique_ptr<llvm::Transform> condition) {
  entries.insert(Entry{std::move(condition), arrivals++});
}

} // namespace corvane
