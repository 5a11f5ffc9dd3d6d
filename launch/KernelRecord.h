// What is kept for each kernel of the application's.

#pragma once

#include "launch/ArgSlots.h"
#include "launch/Launch.h"
#include "programs/KernelPrototype.h"

#include "llvm/ADT/STLExtras.h"
#include "llvm/ADT/Sequence.h"

#include <CL/cl.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace corvane {

/// A variant that stands beside one kernel of the application's.
struct VariantKernel {
  cl_kernel kernel; ///< null: the runtime did not create it; never launched
  const KernelPrototype::Variant *variant; ///< the prototype's
  /// How many of the recorded settings the variant has seen.
  std::uint64_t argSyncCount = 0;
};

/// Which variant certain sizes lead to. Conditions do not change, so the answer
/// stays true.
struct Selection {
  LaunchSizes sizes{UINT32_MAX, {}, {}}; ///< at first those of no launch
  VariantKernel *variant = nullptr;      ///< null: none accepts
  VariantRange range;                    ///< with which the variant is launched
};

/// A kernel that the application created from a program that we know.
///
/// Owned by the state; found by handle. Hold the agent lock while using it. Its
/// variant kernels are references of ours that whoever drops the record
/// releases: the record may end with the process, when there is no runtime left
/// to call.
struct KernelRecord {
  KernelRecord(cl_program fromProgram, cl_kernel ofKernel,
               std::shared_ptr<const KernelPrototype> ofItsKind);

  const std::string &name() const { return prototype->name; }

  cl_program program; ///< borrowed
  cl_kernel kernel;   ///< borrowed; the application holds it
  std::shared_ptr<const KernelPrototype> prototype; ///< never null

  /// In the order in which launches consider them.
  std::vector<VariantKernel> variantKernels;

  /// That of the last launch: most programs repeat one.
  Selection selection;

  ArgSlots argSlots;
  /// How many slots, from the first, are set without a gap.
  std::size_t recordedCount = 1;

  /// Settings recorded so far, and how many of them the kernel's own replay has
  /// seen. A program that sets arguments for days passes 2^32.
  std::uint64_t argSetCount = 0;
  std::uint64_t argSyncCount = 0;

  /// Arguments that the kernel has got and no variant can get.
  std::size_t lostArguments = 0;
  /// Whether variants have all arguments that the kernel was given.
  bool variantsCanRun() const { return lostArguments == 0; }
};

/// The recorded arguments, in order: the slots up to the first gap.
inline auto recordedArguments(const KernelRecord &record) {
  return llvm::map_range(
      llvm::seq<std::size_t>(0, record.recordedCount),
      [&slots = record.argSlots](std::size_t index) -> const ArgSlot & {
        return *slots.find(index);
      });
}

} // namespace corvane
