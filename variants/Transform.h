// Conditions under which a variant may replace its base kernel, and their
// order.
#pragma once

#include "llvm/ADT/iterator.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <set>
#include <string>

namespace llvm {

/// The base of all conditions: accepts everything and changes nothing.
///
/// A condition does not change once it is in a record, so any thread may ask it
/// at any time. Size arrays hold at least `workDim` entries and are never null;
/// a launch without local sizes comes with an array of zeros.
struct Transform {
  /// The first key of the order inside a record; 1 is not taken.
  enum Kind : std::uint32_t {
    RestrictKind = 0,
    CoarseKind = 2,
    DivisibleKind = 3,
  };

  std::uint32_t kind;      ///< a Kind
  std::uint32_t dimension; ///< the second key: the dimension coarsened, or 0

  // The order of the operations is that of the table of virtual functions.

  /// Whether the variant may run over this ND range.
  virtual bool acceptsLaunch(std::uint32_t workDim,
                             const std::size_t *globalSizes,
                             const std::size_t *localSizes) const;

  /// Rewrites the ND range in place for the variant.
  virtual void adjustLaunch(std::uint32_t workDim, std::size_t *globalSizes,
                            std::size_t *localSizes) const;

  /// Whether the variant may run with this argument. `value` points to `size`
  /// bytes at any alignment; null means that the argument has no bytes.
  virtual bool acceptsArgument(std::uint32_t index, std::size_t size,
                               const void *value) const;

  /// The item of a variant's name that makes this condition.
  virtual std::string specText() const = 0;

  /// A new condition of the same class with the same fields.
  virtual std::unique_ptr<Transform> clone() const = 0;

  /// Whether this comes before `other`, which has the same kind and dimension.
  virtual bool precedes(const Transform &other) const;

  // Last, so that the operations above keep their places.
  virtual ~Transform();

protected:
  Transform(std::uint32_t kindValue, std::uint32_t coarsenedDimension)
      : kind(kindValue), dimension(coarsenedDimension) {}
  Transform(const Transform &) = default;
  Transform &operator=(const Transform &) = default;
};

} // namespace llvm

namespace corvane {

/// The order of conditions inside a record: by kind, then by dimension, then as
/// the conditions themselves say. Two of which neither comes first are
/// equivalent. Not irreflexive where `precedes` is always true, so it is not
/// fit for a standard container; ConditionSet makes it so.
struct TransformOrder {
  bool operator()(const llvm::Transform &a, const llvm::Transform &b) const;
};

/// The conditions of one variant, owned and in the TransformOrder.
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
