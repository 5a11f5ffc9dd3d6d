// What the layer knows of the kernels that application and agent hold.

#pragma once

#include "layer/LayerTable.h"
#include "layer/ObjectTable.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace corvane::layer {

class Companion;

/// A kernel of the application's, or one that the agent keeps beside it.
struct KernelInfo {
  std::uint64_t number = 0; ///< of this kernel alone; handles come again
  std::uint64_t owner = 0;  ///< the number of the kernel it is kept for, if any
  std::vector<cl_kernel> kept; ///< by the agent, beside this kernel
  bool usesSvm = false;     ///< it was given pointers to shared virtual memory
  bool isGenerated = false; ///< a companion's kernel, for the agent alone
  /// Keeps what belongs to the kernel's program; null if that has none.
  std::shared_ptr<const Companion> companion;
};

/// The kernels that application and agent have created and not released.
///
/// The agent takes a kernel for gone when it sees the last reference released.
/// It is told the references of this table: a runtime may hold references of
/// its own for launches that have not run yet, and counted in, those would hide
/// the last release. The agent would keep its record and find it again under
/// the next kernel at the same address.
ObjectTable<cl_kernel, KernelInfo> &kernels();

/// Whether the kernel was given pointers to shared virtual memory. Its variants
/// were not, so it must run as it is.
bool usesSvm(cl_kernel kernel);

/// Whether it is a kernel of a companion.
bool isGenerated(cl_kernel kernel);

/// Whether the agent keeps kernels of variants for this one.
bool hasVariants(cl_kernel kernel);

} // namespace corvane::layer
