// Describes this process in a run record, and makes the folder of its run.

#pragma once

#include "results/runs/RunLines.h"

#include <cstdint>
#include <optional>
#include <string>

namespace corvane {

/// A time in seconds since 1970 began, as "2024-02-29T23:59:58Z".
std::string utcText(std::int64_t seconds);

/// The first line of this process's run record: program, host, number, start
/// and the variables that are set. What the system does not tell stays empty.
/// Any thread.
ProcessLine describeProcess();

/// Makes the folder "runs/<program>-<host>-<pid>-<UTC time>" in \p tunedFolder,
/// and what it lies in but not the parent of \p tunedFolder. Where the name is
/// taken, a number is added: the folder is new in any case. Returns its path,
/// which is relative only if \p tunedFolder is; none if it cannot be made.
std::optional<std::string> makeRunFolder(const std::string &tunedFolder,
                                         const ProcessLine &process);

} // namespace corvane
