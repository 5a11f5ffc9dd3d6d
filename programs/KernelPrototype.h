// What all kernels of one name in a program have in common.

#pragma once

#include "variants/TransformedKernel.h"

#include <memory>
#include <string>
#include <vector>

namespace corvane {

/// The name of a kernel and its variants, ready for each creation of such a
/// kernel. Does not change; shared with the records of the kernels, which may
/// outlive the program's.
struct KernelPrototype {
  struct Variant {
    explicit Variant(const llvm::TransformedKernelAgent &found);

    const std::string kernelName;              ///< as the runtime knows it
    const llvm::TransformedKernelAgent record; ///< a copy of the group's
    const std::string spec;                    ///< as timings are labelled
    const bool testsArguments; ///< whether a condition looks at arguments
  };

  std::string name;
  /// In the runtime's order of kernels.
  std::vector<std::unique_ptr<const Variant>> variants;
};

} // namespace corvane
