// The results table as one would write it in an afternoon: a yardstick.

#pragma once

#include <string>

namespace corvane::bench {

/// Reads the raw timing log at \p logPath and writes the results table, byte
/// for byte as the library does.
void writePlainTable(const std::string &logPath, const std::string &tablePath);

} // namespace corvane::bench
