// What the benchmarks of the hooks share.

#pragma once

#include "agent/DispatchTable.h"

#include <benchmark/benchmark.h>

#include <string>
#include <utility>
#include <vector>

namespace corvane::bench {

/// How a call reaches the runtime.
enum class Way {
  Runtime, ///< directly through the runtime's table
  Pass,    ///< by a function that only forwards
  Lock,    ///< by one that also holds a lock like the agent's
  Agent,   ///< by the hook
};

/// The name of \p way in the names of benchmarks.
const char *nameOf(Way way);

/// The yardstick functions for Pass and Lock, the tables for the others.
decltype(DispatchTable::clSetKernelArg) setterBy(Way way);
decltype(DispatchTable::clEnqueueNDRangeKernel) launcherBy(Way way);

/// How many threads make the calls, each on kernels of its own.
void setThreadCount(int count);
int threadCount();

/// Registers \p run(state) as a benchmark on as many threads. Where these wait
/// for each other that is part of what a call takes; a single thread waits for
/// other programs only.
template <typename Run> void add(const std::string &name, Run run) {
  auto *added = benchmark::RegisterBenchmark(name.c_str(), std::move(run));
  if (threadCount() > 1)
    added->Threads(threadCount())->UseRealTime();
}

/// Each registers the benchmarks of some hooks.
void addArgumentCases();
void addLaunchCases();
void addObjectCases();
void addProgramCases();

} // namespace corvane::bench
