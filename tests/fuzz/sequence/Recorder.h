// Records calls between the agent and the scripted runtime.

#pragma once

#include "agent/DispatchTable.h"

#include <CL/cl.h>

#include <string>
#include <vector>

namespace corvane::fuzz {

/// A call that reached the runtime, and its answer.
struct Heard {
  std::string entry;
  cl_int status = CL_SUCCESS;
  const void *handle = nullptr; ///< of what was made; of the kernel launched
  cl_event event = nullptr;     ///< of a launch, if one was wanted
  std::vector<cl_kernel> made;  ///< by clCreateKernelsInProgram
};

/// Records calls to the entries that the agent hooks and to a few others. One
/// at a time.
class Recorder {
public:
  /// Replaces entries of the table. Do this before the agent gets it.
  explicit Recorder(DispatchTable &table);
  ~Recorder();
  Recorder(const Recorder &) = delete;
  Recorder &operator=(const Recorder &) = delete;

  void forget() { calls.clear(); }

  /// The calls to \p entry since then, in order.
  std::vector<Heard> heard(const std::string &entry) const;

  /// For the functions that replace entries.
  void add(Heard call) { calls.push_back(std::move(call)); }
  const DispatchTable &below() const { return original; }
  static Recorder &current();

private:
  DispatchTable original;
  std::vector<Heard> calls;
};

} // namespace corvane::fuzz
