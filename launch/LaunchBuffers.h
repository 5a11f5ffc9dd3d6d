// Which buffers a launch may write to, and whether all of them can be saved.

#pragma once

#include "launch/KernelRecord.h"

#include "llvm/ADT/ArrayRef.h"

#include <CL/cl.h>

#include <cstddef>
#include <vector>

namespace corvane {

struct AgentState;

/// A buffer among the recorded arguments of a kernel.
struct LaunchBuffer {
  cl_mem memObject; ///< borrowed; the application holds it
  std::size_t size; ///< bytes, never 0
  cl_uint argument; ///< the first one that it was given as
};

/// The buffers among a kernel's recorded arguments, each once.
class LaunchBuffers {
public:
  /// Looks the arguments up among the buffers of \p state. Does not wait for
  /// the runtime. Hold the agent lock.
  LaunchBuffers(AgentState &state, const KernelRecord &record);

  /// False if an argument is memory that a kernel may write to and that cannot
  /// be saved and restored: then no variant may run.
  bool areComplete() const { return complete; }

  llvm::ArrayRef<LaunchBuffer> list() const { return buffers; }

  /// The other memory objects that the kernel gets and only reads.
  llvm::ArrayRef<cl_mem> onlyRead() const { return readOnly; }

private:
  bool add(AgentState &state, cl_mem memObject, cl_uint argument);
  void addUnrecorded(cl_kernel kernel, cl_uint argument, cl_mem value);
  bool contains(cl_mem memObject) const;

  std::vector<LaunchBuffer> buffers;
  std::vector<cl_mem> readOnly;
  bool complete = true;
};

} // namespace corvane
