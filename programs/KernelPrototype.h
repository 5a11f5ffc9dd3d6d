// What all kernels of one name in a program have in common.

#pragma once

#include "variants/TransformedKernel.h"

#include <memory>
#include <string>
#include <vector>

namespace corvane {

/// One variant, described once for all kernels that will have it.
struct VariantDescription {
  explicit VariantDescription(const llvm::TransformedKernelAgent &found)
      : kernelName(found.kernelName()), conditions(found),
        spec(conditions.llvm::TransformedKernel::specText()) {}

  const std::string kernelName;                  ///< as the runtime knows it
  const llvm::TransformedKernelAgent conditions; ///< a copy of the group's
  const std::string spec;                        ///< its name in all results
};

/// The name of a kernel and its variants, ready for each creation of such a
/// kernel. Does not change; shared with the records of the kernels, which may
/// outlive the program's.
struct KernelPrototype {
  std::string name;
  /// In the runtime's order of kernels.
  std::vector<std::unique_ptr<const VariantDescription>> variants;
};

} // namespace corvane
