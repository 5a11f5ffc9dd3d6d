// What a condition does unless its class overrides it, and a strict order of
// conditions, as a standard set needs it.
#include "variants/Transform.h"

#include <utility>

namespace llvm {

Transform::~Transform() = default;

bool Transform::acceptsLaunch(std::uint32_t, const std::size_t *,
                              const std::size_t *) const {
  return true;
}

void Transform::adjustLaunch(std::uint32_t, std::size_t *,
                             std::size_t *) const {}

bool Transform::acceptsArgument(std::uint32_t, std::size_t,
                                const void *) const {
  return true;
}

bool Transform::precedes(const Transform &) const { return true; }

} // namespace llvm

bool corvane::TransformOrder::operator()(const llvm::Transform &a,
                                         const llvm::Transform &b) const {
  if (a.kind != b.kind)
    return a.kind < b.kind;
  if (a.dimension != b.dimension)
    return a.dimension < b.dimension;
  return a.precedes(b);
}

namespace corvane {

bool ConditionSet::EntryOrder::operator()(const Entry &a,
                                          const Entry &b) const {
  const bool aFirst = TransformOrder()(*a.condition, *b.condition);
  const bool bFirst = TransformOrder()(*b.condition, *a.condition);
  // Where both claim to be first, the newer one is put first. A variant's
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
