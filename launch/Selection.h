// Which variant a launch's sizes lead to.

#pragma once

#include "launch/KernelRecord.h"
#include "launch/Launch.h"

namespace corvane {

/// Makes the record's selection that of \p launch, whose dimensions must fit.
void select(KernelRecord &record, const Launch &launch);

/// The selection for \p launch, whose dimensions must fit. It lasts until the
/// next. Most programs launch a kernel with the same sizes again and again.
inline const Selection &selectionFor(KernelRecord &record,
                                     const Launch &launch) {
  if (!hasSizes(launch, record.selection.sizes))
    select(record, launch);
  return record.selection;
}

} // namespace corvane
