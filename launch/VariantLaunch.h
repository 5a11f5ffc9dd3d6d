// What has to be done to a variant before it can stand in for its kernel.

#pragma once

#include "launch/KernelRecord.h"
#include "launch/Launch.h"

#include <optional>

namespace corvane {

/// The ND range with which a variant is launched.
struct VariantRange {
  Sizes global{};
  Sizes local{};

  /// Null when the runtime is to choose.
  const std::size_t *localSize() const {
    return local[0] != 0 ? local.data() : nullptr;
  }
};

/// The range with which \p variant takes \p launch, a regular one; nothing if a
/// condition rejects the launch's sizes.
std::optional<VariantRange>
rangeFor(const llvm::TransformedKernelAgent &variant, const Launch &launch,
         const Sizes &local);

/// How many arguments the runtime says \p kernel has; nothing if it does not
/// say.
std::optional<cl_uint> argumentCount(cl_kernel kernel);

/// If \p variant has more arguments than the application's kernel, sets the
/// last one to the work-group counts of \p launch. False if the runtime does
/// not say how many either has: the variant may lack its last argument then.
bool giveGroupCounts(cl_kernel variant, const Launch &launch,
                     std::optional<cl_uint> kernelArguments);

} // namespace corvane
