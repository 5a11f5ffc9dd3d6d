// Counts what the test program allocates.
#pragma once

namespace corvane::test {

/// How often any thread has called operator new so far.
long allocationCount();

} // namespace corvane::test
