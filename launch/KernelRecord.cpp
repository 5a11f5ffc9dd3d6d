// Asks the runtime about kernels and sets the hidden argument of variants.

#include "launch/KernelRecord.h"

#include "agent/RuntimeTable.h"

using namespace corvane;

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
