// Writes a kernel's body as a loop over the lanes.
#pragma once

#include "coarsening/LaneText.h"

namespace corvane::coarsening {

/// `inside` gives, for an axis, the condition that the loop's present position
/// is inside the launch; empty where it always is. `ids` declares what the body
/// asks for, with the positions as laneVariable() names them; it is called
/// after the body was written.
std::string
writeSequential(const clang::FunctionDecl &kernel, const Plan &plan,
                LaneText &lanes, unsigned &labels, bool meets,
                llvm::function_ref<std::string()> ids,
                llvm::function_ref<std::string(unsigned axis)> inside);

/// The variable that counts along an axis.
std::string laneVariable(const Names &names, const Axis &axis);

} // namespace corvane::coarsening
