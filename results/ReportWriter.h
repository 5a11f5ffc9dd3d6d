// Writes the results table and the HTML report.

#pragma once

#include "results/ConfigResults.h"

namespace corvane {

/// Ranks the versions of each configuration and writes autotune.csv, main.html
/// and the pages under html/ in the job's output directory, which must hold the
/// folder html already. A file that cannot be created is left out in silence.
/// Lets go of each configuration that is written. Always returns 0.
int writeReport(ReportJob &job);

} // namespace corvane
