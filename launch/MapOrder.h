// The order in which launches consider the variants of a kernel.

#pragma once

#include "launch/KernelRecord.h"

#include <vector>

namespace corvane {

/// Puts \p variants, which come in the order of their creation, into that of a
/// hash map of their handles. No variant has a rank; programs have always got
/// this order, which stays the same for one kernel object. Of variants with one
/// handle, null above all, the first one stays. An exception leaves all as it
/// was.
void putInMapOrder(std::vector<VariantKernel> &variants);

} // namespace corvane
