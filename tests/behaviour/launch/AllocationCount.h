// Counts what is allocated in the process, by the agent's library too.

#pragma once

namespace corvane::test {

/// How often this thread has got memory so far, by whatever function.
long allocationCount();

} // namespace corvane::test
