// The order in which launches consider the variants of a kernel.

#pragma once

#include "launch/KernelRecord.h"

#include <vector>

namespace corvane {

/// Puts \p variants, which come in the order of their creation, into the order
/// of an llvm::DenseMap of their handles. No variant has a rank; programs have
/// always got this order, which stays the same for one kernel object. Of
/// variants with one handle, null above all, the first one stays; those at the
/// two addresses that the map uses as marks, where no runtime has an object, do
/// not. An exception leaves all as it was.
void putInMapOrder(std::vector<VariantKernel> &variants);

} // namespace corvane
