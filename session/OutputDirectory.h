// Where the results of this process go.

#pragma once

#include <optional>
#include <string>

namespace corvane {

/// The value of CORVANE_AUTOTUNE at this moment, also while it is parked; none
/// if it is not defined. A relative one is looked for from \p loadFolder, the
/// folder that was current at the load; if that is empty it stays relative. Any
/// thread.
std::optional<std::string> outputDirectory(const std::string &loadFolder);

} // namespace corvane
