// The results table written in the plainest way, as a yardstick.

#pragma once

#include <string>

namespace corvane::bench {

/// Reads the raw timing log at \p logPath and writes the results table, byte
/// for byte as the library does.
void writePlainTable(const std::string &logPath, const std::string &tablePath);

} // namespace corvane::bench
