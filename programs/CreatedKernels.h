// Creates all kernels of a program at once, and tells what each is called and
// whether that makes it a variant.

#pragma once

#include "agent/Owned.h"
#include "variants/TransformedKernel.h"

#include <CL/cl.h>

#include <memory>
#include <string>

namespace corvane {

/// Owns kernels in the runtime's order until they are released or given away
/// from the front; releases what is left.
class CreatedKernels {
public:
  CreatedKernels() = default;
  ~CreatedKernels();
  CreatedKernels(const CreatedKernels &) = delete;
  CreatedKernels &operator=(const CreatedKernels &) = delete;

  /// Creates the kernels of \p program, if they are at most \p most, and
  /// returns the runtime's status. After a failure there are none, and it may
  /// be called again.
  cl_int createUpTo(cl_uint most, cl_program program);

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

/// The function name of \p kernel as the runtime tells it; empty if it does
/// not.
std::string readKernelName(cl_kernel kernel);

/// The variant that a kernel of this name is, or null if it is an ordinary
/// kernel. A name too long for the buffer of a usual query makes no variant.
std::unique_ptr<llvm::TransformedKernelAgent>
variantOf(const std::string &kernelName);

} // namespace corvane
