// Looks through a build log for complaints about variants.
#pragma once

namespace corvane {

/// Whether `log`, the compiler's text for one device, flags a variant.
///
/// The log ends with a NUL, is not null, and is spoilt: the words are cut where
/// they stand.
bool screenBuildLog(char *log);

} // namespace corvane
