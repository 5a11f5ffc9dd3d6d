// What a condition does unless its class overrides it; the order of conditions.
#include "variants/Transform.h"

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
