// The table of what tuning has found, for a terminal.

#pragma once

#include "results/overview/Overview.h"

#include <string>

namespace corvane {

/// One line for each configuration under a line of titles, those with the most
/// kernel time first. Long tables are cut, which a last line says.
std::string tuneTable(const Overview &overview);

} // namespace corvane
