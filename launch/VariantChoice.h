// Decides which variant of a kernel takes a launch, and says why not.

#pragma once

#include "launch/KernelRecord.h"
#include "launch/Launch.h"

#include <string>
#include <vector>

namespace corvane {

struct AgentState;

/// Why a launch is not given to a variant.
struct Refusal {
  enum class Reason {
    None, ///< the variant takes the launch
    // What keeps all variants of the kernel from taking it:
    NoVariants,        ///< the kernel has none
    LostArgument,      ///< the kernel has an argument that no variant can get
    TooManyDimensions, ///< more than three
    ZeroLocalSize,     ///< the runtime is to refuse the launch as it is
    NotInProfile,      ///< the profile names none that the program has
    // What keeps one variant from taking it:
    NotCreated,    ///< the runtime did not create the variant's kernel
    RejectedSizes, ///< by a condition
    NoGlobalSize,
    RejectedArgument, ///< by a condition
  };
  Reason reason = Reason::None;
  const llvm::Transform *condition = nullptr; ///< that rejects
  const RecordedArgument *argument = nullptr; ///< that is rejected

  explicit operator bool() const { return reason != Reason::None; }
};

/// What was found about one variant and one launch. Valid as long as the
/// kernel's record, and for the arguments as they are now.
struct VariantChoice {
  VariantKernel *variant = nullptr; ///< null: no variant was found
  VariantRange range;               ///< with which it takes the launch
  Refusal refusal;                  ///< if it does not
};

/// Finds the variant for a normal launch: the one that the profile names, if
/// \p state has one (AppliedProfile.h), or else the first whose conditions
/// accept the sizes. The arguments of the latter may still be refused; then no
/// other variant is looked for. Hold the agent lock.
VariantChoice chooseVariant(AgentState &state, KernelRecord &record,
                            const Launch &launch);

/// The same without a profile.
VariantChoice chooseVariant(KernelRecord &record, const Launch &launch);

/// Finds the variants that an autotuned launch runs: all that take the launch,
/// in the order of the record. Hold the agent lock.
std::vector<VariantChoice> variantsToAutotune(KernelRecord &record,
                                              const Launch &launch);

/// Whether \p variant takes \p launch, with its range or the refusal. Hold the
/// agent lock.
VariantChoice examine(KernelRecord &record, VariantKernel &variant,
                      const Launch &launch);

/// One line for people, without its end: which condition refused which values.
/// For a refusal of a launch of these sizes.
std::string explain(const Refusal &refusal, const LaunchSizes &sizes);

} // namespace corvane
