// Kernels that the runtime created for us in one go.

#pragma once

#include "agent/Owned.h"

#include <CL/cl.h>

namespace corvane {

/// Owns kernels in the runtime's order until they are released or given away
/// from the front; releases what is left.
class CreatedKernels {
public:
  CreatedKernels() = default;
  ~CreatedKernels();
  CreatedKernels(const CreatedKernels &) = delete;
  CreatedKernels &operator=(const CreatedKernels &) = delete;

  /// Creates the kernels of \p program, if they are at most \p room, and
  /// returns the runtime's status. On failure there are none, and there can be
  /// another try.
  cl_int createUpTo(cl_uint room, cl_program program);

  bool empty() const { return next == count; }
  cl_uint size() const { return count - next; }
  cl_kernel front() const { return kernels[next]; }

  /// Releases the front kernel and returns the runtime's status.
  cl_int releaseFront();

  /// Leaves the front kernel to the caller.
  cl_kernel takeFront() { return kernels[next++]; }

private:
  ZeroedArray<cl_kernel> kernels;
  cl_uint next = 0;
  cl_uint count = 0;
};

} // namespace corvane
