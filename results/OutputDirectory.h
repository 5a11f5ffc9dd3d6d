// Where the results of this process go.

#pragma once

#include <optional>
#include <string>

namespace corvane {

/// The current folder, absolute; empty if it is unknown or cannot be reached by
/// its name.
std::string currentFolder();

/// The value of CORVANE_AUTOTUNE at this moment, also while it is parked; none
/// if it is not defined. A relative one is made absolute with \p loadFolder,
/// the folder that was current at the load; if that is empty it stays relative.
/// Any thread.
std::optional<std::string> outputDirectory(const std::string &loadFolder);

} // namespace corvane
