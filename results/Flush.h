// The end of the bookkeeping: makes the results and drops the state.

#pragma once

#include "results/ConfigResults.h"

namespace corvane {

/// Creates the job's output directory and the folder html in it; either may
/// exist. Returns 0, or 1 or 2 for the one that could not be created.
int ensureOutputDir(const ReportJob &job);

/// Takes the state, writes the results if autotuning is on, and gives the state
/// up. Does nothing without a state: of several callers one has all the work.
///
/// Waits for no lock but a moment, because it also runs while the process ends
/// and whoever holds a lock may be dead by then.
void flushAutotuneResults();

} // namespace corvane
