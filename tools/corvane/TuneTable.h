// The table of what tuning has found, for a terminal.

#pragma once

#include "results/profile/ProfileMerge.h"

#include "llvm/ADT/ArrayRef.h"

#include <optional>
#include <string>

namespace corvane {

/// One line for each configuration under a line of titles, those with the most
/// kernel time first. Long tables are cut, which a last line says.
std::string tuneTable(llvm::ArrayRef<TunedConfiguration> configurations);

/// The part of the kernel time of all launches that the winners save, from 0 to
/// 1; none where no time is known.
std::optional<double>
partSaved(llvm::ArrayRef<TunedConfiguration> configurations);

/// A time in the unit that suits it, as "83.90 ms".
std::string timeText(double microseconds);

} // namespace corvane
