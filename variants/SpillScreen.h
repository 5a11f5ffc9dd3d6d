// Finds out whether a build log says that a variant spills registers.
#pragma once

namespace corvane {

/// Whether `log`, the compiler's text for one device, flags a variant.
///
/// The log ends with a NUL and is not null. Its text is overwritten: each word
/// gets a NUL at its end.
bool screenBuildLog(char *log);

} // namespace corvane
