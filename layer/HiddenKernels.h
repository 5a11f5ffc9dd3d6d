// Which kernels of a program the application is told of.

#pragma once

#include "layer/LayerTable.h"

#include <optional>
#include <string>
#include <vector>

namespace corvane::layer {

using Names = std::vector<std::string>;

/// The names of a program's kernels as one storey tells them; nothing while the
/// program has no kernels that could be told of.
std::optional<Names> askForNames(const cl_icd_dispatch &calls,
                                 cl_program program);

/// Those of \p names that are not among \p sorted.
Names without(Names names, const Names &sorted);

/// Notes which of the program's kernels the agent keeps to itself. Call after
/// each build, outside of the agent's calls.
void noteHiddenKernels(cl_program program);

/// Their names, sorted.
Names hiddenKernels(cl_program program);

/// Count and names of a program's kernels are as the runtime has them now, less
/// those that the agent hides. Its own answers add one build to the other.
void hideVariants(cl_icd_dispatch &above);

} // namespace corvane::layer
