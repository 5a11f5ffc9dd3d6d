// The page that reports and tuning write.

#pragma once

#include "results/overview/Overview.h"

#include <string>

namespace corvane {

/// The name of the page in a folder.
inline constexpr const char *reportFile = "report.html";

/// Writes the page in one step. Says why and returns false if it cannot.
bool writeReport(const std::string &file, const Overview &overview);

} // namespace corvane
