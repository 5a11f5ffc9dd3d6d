// The conditions of one variant, owned and in order.
#pragma once

#include "variants/Transform.h"

#include "llvm/ADT/SmallVector.h"
#include "llvm/ADT/iterator.h"

#include <memory>

namespace corvane {

/// An owning set of conditions under TransformOrder.
///
/// Of equivalent conditions only the first inserted is kept. Of two conditions
/// that each claim to precede the other (all RestrictArgs do) both are kept,
/// the one inserted later in front.
///
/// A row rather than a tree: every launch walks over the few there are.
class ConditionSet {
  using Entries = llvm::SmallVector<std::unique_ptr<const llvm::Transform>, 2>;

public:
  /// Walks the conditions in order.
  using Iterator = llvm::pointee_iterator<Entries::const_iterator>;

  /// A set that received a clone of each of `conditions`, in their order.
  template <typename Conditions>
  static ConditionSet clonesOf(const Conditions &conditions) {
    ConditionSet clones;
    for (const llvm::Transform &condition : conditions)
      clones.insert(condition.clone());
    return clones;
  }

  /// Takes `condition`, which is not null, or drops it when the set holds an
  /// equivalent one.
  void insert(std::unique_ptr<llvm::Transform> condition);
  void clear() { entries.clear(); }

  Iterator begin() const { return Iterator(entries.begin()); }
  Iterator end() const { return Iterator(entries.end()); }
  bool empty() const { return entries.empty(); }
  std::size_t size() const { return entries.size(); }

private:
  Entries entries;
};

} // namespace corvane
