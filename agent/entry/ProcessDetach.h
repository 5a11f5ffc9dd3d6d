// The end of the process, or of the library's stay in it.

#pragma once

namespace corvane {

/// From now on the results are flushed when the process exits or the library is
/// closed, if no unload has done so before. Any number of calls.
///
/// That flush takes no lock: on Windows the other threads have been stopped by
/// then, and one may have held any lock.
void watchForProcessDetach();

/// That flush. An exception ends here: behind it is nobody who could catch one.
void flushAtDetach();

} // namespace corvane
