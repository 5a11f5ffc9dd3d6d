// The flush: writes the results and ends the bookkeeping.

#pragma once

#include "results/Report.h"

namespace corvane {

/// Creates the job's output directory and the folder html in it; either may
/// exist. Returns 0, or 1 or 2 for the one that could not be created.
int ensureOutputDir(const ReportJob &job);

/// Adds the configurations of the job's log to the job. A log that cannot be
/// read has none. Always returns 0.
int readCSV(ReportJob &job);

/// Writes the table and all pages of the job; files that cannot be written are
/// left out. Always returns 0.
int writeReport(ReportJob &job);

/// Takes the state, writes the results if autotuning is on, and gives the state
/// up. Does nothing without a state: of several callers one has all the work.
///
/// Waits for no lock that another thread may hold for long, because it also
/// runs while the process ends and such a thread may be dead by then.
void flushAutotuneResults();

/// The same for the end of the process: throws nothing and does nothing in a
/// forked child. Its callers, the loader and the C++ runtime, could not catch
/// an exception.
void flushAtDetach();

} // namespace corvane
