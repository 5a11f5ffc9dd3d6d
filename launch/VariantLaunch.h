// What has to be done to a variant before it can stand in for its kernel.

#pragma once

#include "launch/KernelRecord.h"
#include "launch/Launch.h"

#include <optional>

namespace corvane {

/// Makes \p range the one with which \p variant takes \p launch, which has that
/// local size. False, with \p range untouched, if there is no global size or a
/// condition rejects the sizes.
inline bool makeRange(const KernelPrototype::Variant &variant,
                      const Launch &launch, const Sizes &local,
                      VariantRange &range) {
  return fitsSizes(launch) &&
         prepareLaunch(variant.record, launch.workDim, launch.globalSize,
                       local.data(), range.global.data(), range.local.data());
}

/// Whether \p variant's conditions accept the recorded arguments of \p record.
inline bool acceptsArguments(const KernelRecord &record,
                             const KernelPrototype::Variant &variant) {
  return !variant.testsArguments ||
         acceptsArguments(recordedArguments(record), variant.record);
}

/// How many arguments the runtime says \p kernel has; nothing if it does not
/// say.
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
