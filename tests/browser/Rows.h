// Writes the rows of a raw timing log, for launches that never took place.

#pragma once

#include <ostream>

namespace corvane::test {

/// Rows as applications leave them: three kernels in several versions.
void writeOrdinaryRows(std::ostream &log);

/// Rows with names that would run, lead out of the report or break it if a page
/// contained them as they are. A script that runs calls "ran", which the tests
/// define in all pages.
void writeHostileRows(std::ostream &log);

} // namespace corvane::test
