// Flushes the results when the process ends or the library is closed.

#pragma once

namespace corvane {

/// From now on the results are flushed when the process exits or the library is
/// closed, if no unload has done so before. Any number of calls.
///
/// That flush takes no lock: on Windows the other threads have been stopped by
/// then, and one may have held any lock.
void watchForProcessDetach();

/// That flush. It throws nothing: its callers, the loader and the C++ runtime,
/// could not catch an exception.
void flushAtDetach();

} // namespace corvane
