// A runtime with just what a tuning job calls. Kernels are functions of the
// test's; every command is over when its call returns.

#pragma once

#include <CL/cl.h>

#include <functional>
#include <string>
#include <vector>

namespace corvane::test {

/// A buffer of the test's; its address is the handle.
struct SmallBuffer {
  std::vector<float> values;
  int references = 1;

  cl_mem handle() { return reinterpret_cast<cl_mem>(this); }
};

/// A kernel of the test's; its address is the handle.
struct SmallKernel {
  std::function<void()> body;
  cl_ulong nanoseconds = 1000; ///< of a run, by the profiling counters
  bool launches = true;        ///< false: the runtime refuses
  bool succeeds = true;        ///< false: a run fails while it is executed
  int runs = 0;
  int references = 1;

  cl_kernel handle() { return reinterpret_cast<cl_kernel>(this); }
};

/// A user event of the test's; its address is the handle.
struct SmallUserEvent {
  int references = 1;
  std::vector<cl_int> statuses; ///< as they were set

  cl_event handle() { return reinterpret_cast<cl_event>(this); }
};

/// The table of the agent's runtime, and what the calls through it did. One at
/// a time.
class SmallRuntime {
public:
  SmallRuntime();
  ~SmallRuntime();
  SmallRuntime(const SmallRuntime &) = delete;
  SmallRuntime &operator=(const SmallRuntime &) = delete;

  cl_command_queue queue() { return reinterpret_cast<cl_command_queue>(this); }

  int queueReferences = 1;
  int openEvents = 0;            ///< of runs, not given back yet
  bool writesWork = true;        ///< false: no buffer can be written
  bool hasTimes = true;          ///< false: no counters
  std::function<void()> onWrite; ///< before each write
};

} // namespace corvane::test
