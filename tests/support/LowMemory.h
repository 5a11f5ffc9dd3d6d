// Memory at low addresses, where some processes have all of theirs.

#pragma once

namespace corvane::test {

/// A page below 4 GiB; null if there is no room for one.
char *mapLowPage();

/// Gives the page back: then nothing lies there.
void unmapLowPage(char *page);

} // namespace corvane::test
