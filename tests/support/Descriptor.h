// The standard error stream as a file descriptor: all that differs by system.

#pragma once

namespace corvane::test {

/// Sends what is written on standard error to the file \p path, and returns the
/// descriptor that it went to before; -1 on failure.
int redirectErrorStream(const char *path);

/// Undoes redirectErrorStream.
void restoreErrorStream(int before);

} // namespace corvane::test
