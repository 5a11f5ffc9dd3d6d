// Reads the raw timing log back.

#pragma once

#include "results/ConfigResults.h"

namespace corvane {

/// Adds the configurations of the job's log to the job, in the order in which
/// they first occur. A missing log has none; lines that are no rows give
/// garbled configurations, never an error. Always returns 0.
int readCSV(ReportJob &job);

} // namespace corvane
