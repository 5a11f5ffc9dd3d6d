// Adds variants of its kernels to a program in OpenCL C.
#pragma once

#include "coarsening/BuildOptions.h"
#include "coarsening/Plan.h"
#include "coarsening/Reason.h"

#include <optional>
#include <string>
#include <vector>

namespace corvane::coarsening {

struct MadeVariant {
  std::string kernel;
  std::string plan; ///< as it was asked for
  std::string name;
  std::string analysis; ///< what differs between lanes, for people
  /// Where its text begins in the program, and how long it is. A program from
  /// which it is cut out is right for the other variants.
  size_t begin = 0;
  size_t size = 0;
};

struct RefusedPlan {
  std::string kernel;
  std::string plan;
  Refusal refusal;
};

struct Coarsened {
  /// The source with its variants, ready to be built with the same options. The
  /// source itself where there is no variant.
  std::string program;
  std::vector<MadeVariant> variants;
  std::vector<RefusedPlan> refusals;
  std::vector<std::string> included; ///< files that the source includes
  std::optional<std::string> error;  ///< why the source cannot be read
};

/// The variants of one program together are at most this long.
constexpr size_t longestVariants = 200 * 1024; // bytes

/// Makes a variant of every kernel for every plan, or refuses it. Kernels that
/// are variants themselves are passed over, and so are plans that come to the
/// same variant as one before.
Coarsened coarsen(llvm::StringRef source, const BuildOptions &options,
                  llvm::ArrayRef<Plan> plans);

} // namespace corvane::coarsening
