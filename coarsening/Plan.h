// Which variant of a kernel is asked for, and the name that it gets.
#pragma once

#include "llvm/ADT/SmallVector.h"
#include "llvm/ADT/StringRef.h"

#include <optional>
#include <string>
#include <vector>

namespace corvane::coarsening {

/// How the ND range of the variant's launch differs from its kernel's.
enum class Mode {
  Global, ///< 'g': fewer work-groups of the same size, none left over
  Padded, ///< 'c': as Global, with work-groups that have less to do at the end
  Local,  ///< 'l': as many work-groups, with fewer work-items each
};

/// How the work of several work-items becomes one's.
enum class Method {
  Jam,        ///< statement by statement, what they share written once
  Sequential, ///< the whole body once for each, in a loop
};

/// Which work-items become one.
enum class Mapping {
  Best,     ///< Adjacent where the kernel allows it, else Block; 'l' has one
  Adjacent, ///< neighbours in the global range
  Block,    ///< those with the same local id in neighbouring work-groups
  Stride,   ///< those that are the number of launched work-items apart
};

/// One dimension that is coarsened: `factor` work-items become one.
struct Axis {
  unsigned dim = 0;
  unsigned factor = 1;
};

/// A variant that is asked for. There is at least one axis, and no two have the
/// same dimension; they are ordered by dimension.
struct Plan {
  Mode mode = Mode::Global;
  Method method = Method::Jam;
  Mapping mapping = Mapping::Best;
  llvm::SmallVector<Axis, 2> axes;

  /// How many work-items become one. One of them is a "lane".
  unsigned lanes() const;
  /// The position of a lane along an axis, from 0.
  unsigned digit(unsigned lane, unsigned axis) const;
  /// The axis that coarsens `dim`, or null.
  const Axis *axisOf(unsigned dim) const;

  /// What a person writes for it, such as "g0S4", "block:g0S8", "seq:l1S2".
  std::string text() const;
};

/// The plans that `text` names, separated by commas. "all" is every plan that
/// is worth a look, "default" those that are made where none is named. None if
/// the text is wrong.
std::optional<std::vector<Plan>> parsePlans(llvm::StringRef text);
std::vector<Plan> defaultPlans();
std::vector<Plan> allPlans();

/// The spec in the name of the plan's variant. It accepts only launches for
/// which the variant is right:
/// - 'g' takes every multiple of factor squared, and without a local size too,
///   unless `needsLocalSize`;
/// - 'l' and 'c' are accompanied by an item that wants whole work-groups: from
///   the sizes of a launch that has none, what was left over cannot be told.
///
/// The mapping must not be Best. Variants that do the same launches in another
/// way have an 'r' item each; the plainest has none.
std::string specOf(const Plan &plan, bool needsLocalSize, bool plainest);

} // namespace corvane::coarsening
