// Takes a raw timing log for the record of a run.

#pragma once

#include "results/RawTimingLog.h"
#include "results/runs/RunReader.h"

#include "llvm/ADT/ArrayRef.h"

namespace corvane {

/// The record that a process would have kept that took these samples, of one
/// program and device without names. Configurations whose sizes are no numbers,
/// and times that are not above zero, are problems of the record.
RunRecord recordOfLog(llvm::ArrayRef<ConfigResults> configurations);

} // namespace corvane
