// Prepares variants for a launch.

#include "launch/VariantLaunch.h"

#include "agent/RuntimeTable.h"

using namespace corvane;

std::optional<VariantRange>
corvane::rangeFor(const llvm::TransformedKernelAgent &variant,
                  const Launch &launch, const Sizes &local) {
  VariantRange range;
  if (!prepareLaunch(variant, launch.workDim, launch.globalSize, local.data(),
                     range.global.data(), range.local.data()))
    return std::nullopt;
  return range;
}

std::optional<cl_uint> corvane::argumentCount(cl_kernel kernel) {
  cl_uint count = 0;
  const cl_int status = runtime().clGetKernelInfo(
      kernel, CL_KERNEL_NUM_ARGS, sizeof count, &count, nullptr);
  if (status != CL_SUCCESS)
    return std::nullopt;
  return count;
}

bool corvane::giveGroupCounts(cl_kernel variant, const Launch &launch,
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
