// How many references to a kernel the application holds.

#pragma once

#include "layer/LayerTable.h"
#include "layer/ObjectTable.h"

#include <cstdint>
#include <vector>

namespace corvane::layer {

/// A kernel of the application's, or one that the agent keeps beside it.
struct KernelInfo {
  std::uint64_t number = 0; ///< of this kernel alone; handles come again
  std::uint64_t owner = 0;  ///< the number of the kernel it is kept for, if any
  std::vector<cl_kernel> kept; ///< for this one
  bool usesSvm = false;
};

/// The kernels that application and agent have created and not released.
ObjectTable<cl_kernel, KernelInfo> &kernels();

/// Notes what is created on this thread below the agent while it lives. There
/// is one at a time on a thread.
struct CreatedKernels {
  CreatedKernels();
  ~CreatedKernels();
  CreatedKernels(const CreatedKernels &) = delete;
  CreatedKernels &operator=(const CreatedKernels &) = delete;

  std::vector<cl_kernel> all;
};

/// Has the agent, when it asks for the reference count of a kernel, hear of the
/// application's references alone.
///
/// The agent takes a kernel for gone when it sees the last reference released.
/// A runtime may hold references of its own for launches that have not run yet;
/// counted in, they would hide the last release, and the agent would keep its
/// record, to find it again under the next kernel at the same address.
void countKernelReferences(cl_icd_dispatch &below);

/// Gives the application the runtime's own answer to what it asks of a kernel.
/// An agent's own hook stays, and hears of the application's references too.
void answerAboutKernels(cl_icd_dispatch &above);

} // namespace corvane::layer
