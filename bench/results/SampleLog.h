// Writes raw timing logs like those of long programs.

#pragma once

#include <cstddef>
#include <string>

namespace corvane::bench {

/// Writes a log of \p rows rows: launches of 100 rows a configuration go round
/// all configurations, and each launch times five versions. The same numbers
/// each time.
void writeSampleLog(const std::string &path, std::size_t rows);

} // namespace corvane::bench
