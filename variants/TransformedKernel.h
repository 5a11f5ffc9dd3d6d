// The record of one generated variant: which launches it takes, and with which
// sizes.
#pragma once

#include "variants/Transform.h"

#include <iterator>
#include <string>
#include <utility>

namespace llvm {

/// The conditions under which a variant may replace its base kernel.
///
/// Does not change once it is built, so any thread may ask it. None of the
/// questions allocates.
struct TransformedKernel {
  const corvane::ConditionSet conditions;

  explicit TransformedKernel(corvane::ConditionSet ordered)
      : conditions(std::move(ordered)) {}

  /// Clones the conditions in their order. That reverses the RestrictArgs,
  /// because a later one goes in front. Only the rebuilt text shows it, and a
  /// second copy reverses them again. Kept on purpose.
  TransformedKernel(const TransformedKernel &source)
      : conditions(corvane::ConditionSet::clonesOf(source.conditions)) {}

  /// The items of all conditions, in order: the canonical form of the spec.
  virtual std::string specText() const;
  virtual ~TransformedKernel();

  /// Whether some condition looks at arguments. The ones that do are the last.
  bool looksAtArguments() const {
    return !conditions.empty() &&
           std::prev(conditions.end())->kind == Transform::DivisibleKind;
  }

  /// The first condition, in order, that rejects; null if all accept. Those
  /// after it are not asked. For the parameters see Transform.
  const Transform *findRejecting(std::uint32_t workDim,
                                 const std::size_t *globalSizes,
                                 const std::size_t *localSizes) const;
  const Transform *findRejectingArgument(std::uint32_t index, std::size_t size,
                                         const void *value) const;

  /// Whether all conditions accept.
  bool acceptsLaunch(std::uint32_t workDim, const std::size_t *globalSizes,
                     const std::size_t *localSizes) const {
    return !findRejecting(workDim, globalSizes, localSizes);
  }
  bool acceptsArgument(std::uint32_t index, std::size_t size,
                       const void *value) const {
    return !findRejectingArgument(index, size, value);
  }

  /// Lets each condition, in order, rewrite the sizes that the one before left.
  void adjustLaunch(std::uint32_t workDim, std::size_t *globalSizes,
                    std::size_t *localSizes) const;
};

/// A variant record that also knows its base kernel and so its own name.
struct TransformedKernelAgent : TransformedKernel {
  const std::string baseName;

  /// Holds a clone of each of `source`, any range of conditions, received in
  /// the range's order.
  template <typename Conditions>
  TransformedKernelAgent(std::string base, const Conditions &source)
      : TransformedKernel(corvane::ConditionSet::clonesOf(source)),
        baseName(std::move(base)) {}

  /// The kernel's full name in canonical form. It can differ from the name that
  /// was parsed; a caller that needs that one must keep it.
  std::string kernelName() const;

  /// The full name as well. `TransformedKernel::specText()` gives the spec
  /// alone.
  std::string specText() const override;
};

} // namespace llvm

namespace corvane {

/// Writes the sizes with which `record`'s variant takes this launch.
///
/// False, with nothing written, when a condition rejects or `globalSizes` is
/// null. All other arrays hold at least `workDim` entries; `localSizes` are all
/// zero for a launch without. The given sizes are only read.
bool prepareLaunch(const llvm::TransformedKernel &record, std::uint32_t workDim,
                   const std::size_t *globalSizes,
                   const std::size_t *localSizes, std::size_t *outGlobal,
                   std::size_t *outLocal);

/// Whether `record` accepts every one of `arguments`: any range whose elements
/// have an `index`, a `size` in bytes and a `value` pointing to the bytes.
template <typename Arguments>
bool acceptsArguments(const Arguments &arguments,
                      const llvm::TransformedKernel &record) {
  for (const auto &argument : arguments)
    if (!record.acceptsArgument(argument.index, argument.size, argument.value))
      return false;
  return true;
}

} // namespace corvane
