// The conditions of one variant, owned and in order.
#pragma once

#include "variants/Transform.h"

#include "llvm/ADT/iterator.h"

#include <iterator>
#include <memory>
#include <set>

namespace corvane {

/// An owning set of conditions under TransformOrder.
///
/// Of equivalent conditions only the first inserted is kept. Of two conditions
/// that each claim to precede the other (all RestrictArgs do) both are kept,
/// the one inserted later in front.
class ConditionSet {
  struct Entry {
    std::unique_ptr<llvm::Transform> condition; ///< never null
    std::size_t arrival; ///< how many insertions came before
  };
  struct EntryOrder {
    bool operator()(const Entry &a, const Entry &b) const;
  };
  using Entries = std::set<Entry, EntryOrder>;

public:
  /// Walks the conditions in order.
  class Iterator
      : public llvm::iterator_adaptor_base<Iterator, Entries::const_iterator,
                                           std::bidirectional_iterator_tag,
                                           const llvm::Transform> {
  public:
    explicit Iterator(Entries::const_iterator at) : iterator_adaptor_base(at) {}
    const llvm::Transform &operator*() const { return *I->condition; }
  };

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
  std::size_t arrivals = 0;
};

} // namespace corvane
