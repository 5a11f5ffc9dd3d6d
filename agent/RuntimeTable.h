// The runtime's dispatch table as it was given; every call of ours goes
// through.

#pragma once

#include "agent/DispatchTable.h"

namespace corvane {

namespace detail {
extern DispatchTable savedTable;
} // namespace detail

/// The saved table. All entries are null before the first load.
///
/// Reading needs no lock: the table is written while the agent is being loaded,
/// before the runtime learns of any hook.
inline const DispatchTable &runtime() { return detail::savedTable; }

/// Saves \p table as the runtime's. Hold the agent lock.
void saveRuntimeTable(const DispatchTable &table);

/// Makes \p table the same as \p wanted. Entries that keep their value are not
/// written again, so a second load does not disturb threads that are calling
/// through the table.
void writeChangedEntries(DispatchTable &table, const DispatchTable &wanted);

} // namespace corvane
