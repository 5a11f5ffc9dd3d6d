// Rows for a raw timing log of launches that never took place.

#pragma once

#include <ostream>

namespace corvane::test {

/// Rows as applications leave them: three kernels in several versions.
void writeOrdinaryRows(std::ostream &log);

/// Rows that somebody has edited: names that would run, lead out of the report
/// or break it if a page took them as they are. What runs calls "ran",
/// which the tests offer to all pages.
void writeHostileRows(std::ostream &log);

} // namespace corvane::test
