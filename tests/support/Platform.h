// What tests need of the operating system, and what differs between systems.

#pragma once

namespace corvane::test {

/// Defines a variable of the environment, be it empty, or removes it if \p
/// value is null.
void assignVariable(const char *name, const char *value);

/// Redirects standard error to the file \p path, and returns a descriptor of
/// what it was before; -1 on failure.
int redirectErrorStream(const char *path);

/// Undoes redirectErrorStream.
void restoreErrorStream(int before);

/// A page of memory below 4 GiB, where some processes have all of their memory;
/// null if none is free.
char *mapLowPage();

/// Unmaps the page.
void unmapLowPage(char *page);

} // namespace corvane::test
