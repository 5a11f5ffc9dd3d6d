// Tells the user which files the agent refuses to open.

#pragma once

#include <string>

namespace corvane {

/// Writes one line on the error stream: \p path is not a regular file and is
/// not used. Once a process for each path; from any thread, holding any lock.
void reportRefusedFile(const std::string &path);

} // namespace corvane
