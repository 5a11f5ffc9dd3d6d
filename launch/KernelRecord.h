// What is kept for each kernel of the application's.

#pragma once

#include "launch/ArgSlot.h"
#include "variants/TransformedKernel.h"

#include "llvm/ADT/DenseMap.h"
#include "llvm/ADT/iterator.h"
#include "llvm/ADT/iterator_range.h"

#include <CL/cl.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace corvane {

/// The variant kernels with what is known of them. The order in which launches
/// consider them is the order of the map, which follows the hash of the
/// handles: no variant has a rank. A null key stands for a variant that the
/// runtime did not create; it is never launched.
using VariantMap =
    llvm::DenseMap<cl_kernel, std::unique_ptr<llvm::TransformedKernelAgent>>;

/// A kernel that the application created from a program that we know.
///
/// Owned by the state; found by handle. Hold the agent lock while using it. Its
/// variant kernels are references of ours that whoever drops the record
/// releases: the record may end with the process, when there is no runtime left
/// to call.
struct KernelRecord {
  KernelRecord(cl_program fromProgram, cl_kernel ofKernel,
               std::string kernelName);

  cl_program program; ///< borrowed
  cl_kernel kernel;   ///< borrowed; the application holds it
  std::string name;   ///< of the function
  VariantMap variantKernels;

  /// By argument index. A null slot, or one without an index, was never set,
  /// but the first one counts as set from the start: empty and without a value.
  std::vector<std::unique_ptr<ArgSlot>> argSlots;
  /// How many slots, from the first, are set without a gap.
  std::size_t recordedCount = 1;

  /// Settings recorded so far, and how many of them each kernel has seen.
  std::uint32_t argSetCount = 0;
  llvm::DenseMap<cl_kernel, std::uint32_t> argSyncCounts;
};

/// The recorded arguments, in order: the slots up to the first gap.
inline auto recordedArguments(const KernelRecord &record) {
  using Slots = std::vector<std::unique_ptr<ArgSlot>>::const_iterator;
  using Iterator = llvm::pointee_iterator<Slots>;
  const Slots first = record.argSlots.begin();
  return llvm::make_range(
      Iterator(first),
      Iterator(first + static_cast<std::ptrdiff_t>(record.recordedCount)));
}

} // namespace corvane
