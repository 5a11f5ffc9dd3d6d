// What tests need of the operating system, and what differs between systems.

#pragma once

namespace corvane::test {

/// Defines a variable of the environment, be it empty, or removes it if \p
/// value is null.
void assignVariable(const char *name, const char *value);

/// Sends what is written on standard error to the file \p path, and returns the
/// descriptor that it went to before; -1 on failure.
int redirectErrorStream(const char *path);

/// Undoes redirectErrorStream.
void restoreErrorStream(int before);

/// A page of memory below 4 GiB; null if none is free. Some processes have all
/// of their memory there.
char *mapLowPage();

/// Gives the page back: then nothing lies there.
void unmapLowPage(char *page);

} // namespace corvane::test
