// What is known of one kernel that the application has created.

#pragma once

#include "agent/RuntimeTable.h"
#include "launch/Launch.h"
#include "launch/RecordedArguments.h"
#include "programs/KernelPrototype.h"

#include <CL/cl.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace corvane {

struct TunedProgram;

/// What the conditions of a variant say about the sizes of a launch.
struct ExaminedSizes {
  LaunchSizes sizes;
  const llvm::Transform *rejecting = nullptr; ///< null: all conditions accept
  VariantRange range;                         ///< if they do
};

/// A variant's kernel, created beside one kernel of the application's.
struct VariantKernel {
  cl_kernel kernel; ///< null: the runtime did not create it; never launched
  const VariantDescription *description; ///< the prototype's
  /// How many settings of arguments the kernel has seen.
  std::uint64_t settingsSeen = 0;
  /// About the latest launch, if there was one. Most launches repeat the sizes
  /// of the one before; to ask the conditions again took a third of the agent's
  /// time in a launch.
  std::optional<ExaminedSizes> examined = std::nullopt;
};

/// What the profile of this process says about the latest launch of a kernel,
/// and all like it.
struct ProfiledLaunch {
  cl_device_id device = nullptr; ///< null: nothing was looked up yet
  LaunchSizes sizes;
  VariantKernel *variant = nullptr; ///< null: the application's kernel runs
  /// Whether a variant ran for it; null if that is not counted.
  bool *ranVariant = nullptr;

  bool isFor(cl_device_id otherDevice, const LaunchSizes &otherSizes) const {
    return device && device == otherDevice && sizes == otherSizes;
  }
};

/// A kernel that the application created from a program that the agent knows.
///
/// Owned by the state; found by handle. Hold the agent lock while using it. The
/// variants' kernels are references of the agent's. The function that drops the
/// record releases them, and not the record's destructor, which may run at the
/// end of the process, when there is no runtime left to call.
struct KernelRecord {
  KernelRecord(cl_program fromProgram, cl_kernel handle,
               std::shared_ptr<const KernelPrototype> shared)
      : program(fromProgram), kernel(handle), prototype(std::move(shared)) {}

  const std::string &name() const { return prototype->name; }

  cl_program program; ///< borrowed
  cl_kernel kernel;   ///< borrowed; the application holds it
  std::shared_ptr<const KernelPrototype> prototype; ///< never null

  /// In the order in which launches consider them.
  std::vector<VariantKernel> variants;

  /// Only of a kernel with variants.
  RecordedArguments arguments;
  /// While this process tunes: the program as it is built for the device of
  /// the latest launch. Belongs to the state's Tuning.
  const TunedProgram *tunedProgram = nullptr;
  cl_device_id tunedFor = nullptr;

  ProfiledLaunch profiled;

  /// How many settings the kernel's own replay has seen.
  std::uint64_t settingsSeen = 0;
};

/// How many arguments \p kernel has; nothing if the runtime does not say.
inline std::optional<cl_uint> argumentCount(cl_kernel kernel) {
  cl_uint count = 0;
  const cl_int status = runtime().clGetKernelInfo(
      kernel, CL_KERNEL_NUM_ARGS, sizeof count, &count, nullptr);
  if (status != CL_SUCCESS)
    return std::nullopt;
  return count;
}

/// If \p variant has more arguments than the application's kernel, sets the
/// last one to the work-group counts of \p launch. False if the runtime does
/// not say how many either has: the variant may lack its last argument then.
inline bool giveGroupCounts(cl_kernel variant, const Launch &launch,
                            std::optional<cl_uint> kernelArguments) {
  const std::optional<cl_uint> variantArguments = argumentCount(variant);
  if (!kernelArguments || !variantArguments)
    return false;
  if (*variantArguments <= *kernelArguments)
    return true;
  const GroupCountArgument groups = groupCounts(launch);
  (void)runtime().clSetKernelArg(variant, *variantArguments - 1, sizeof groups,
                                 &groups);
  return true;
}

} // namespace corvane
