// Which kernels of a program are hidden from the application.

#pragma once

#include "layer/LayerTable.h"

#include <optional>
#include <string>
#include <vector>

namespace corvane::layer {

using Names = std::vector<std::string>;

/// The names of a program's kernels as the table \p calls tells them; nothing
/// while the program has no kernels that could be told of.
std::optional<Names> askForNames(const cl_icd_dispatch &calls,
                                 cl_program program);

/// Those of \p names that are not among \p sorted.
Names without(Names names, const Names &sorted);

/// Finds out which of the program's kernels the agent keeps to itself: the
/// names that the runtime has and the agent does not tell. Call after each
/// build, outside of the agent's calls.
void rememberHiddenKernels(cl_program program);

/// Their names, sorted.
Names hiddenKernels(cl_program program);

} // namespace corvane::layer
