// The arguments of one kernel, remembered for the kernel's variants.

#pragma once

#include "llvm/ADT/ArrayRef.h"
#include "llvm/ADT/iterator.h"
#include "llvm/ADT/iterator_range.h"

#include <CL/cl.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace corvane {

/// One argument as the application has set it.
struct RecordedArgument {
  explicit RecordedArgument(std::uint32_t ofIndex) : index(ofIndex) {}

  const std::uint32_t index;
  std::size_t size = 0;        ///< bytes
  const void *value = nullptr; ///< in bytes below; null for local memory

  bool isSet = false;  ///< false: only memory was reserved for it
  bool isLost = false; ///< last set to a value that is too large to be kept

  /// Replaced, and never moved, when a value needs more memory. A replay shares
  /// it while the runtime reads the value: the runtime may call the application
  /// back, which may set the argument again. Null: no memory yet.
  std::shared_ptr<unsigned char[]> bytes;
  std::size_t capacity = 0; ///< of the memory, in bytes
};

/// The arguments of a kernel, by index. Guarded by the agent lock.
///
/// Arguments beyond a gap are stored, but they do not count as recorded until
/// the gap is filled. The first argument counts as recorded from the start,
/// with size zero and no value.
class RecordedArguments {
public:
  /// Indices are below this. No kernel has as many arguments, so a runtime that
  /// accepts a higher index is wrong.
  static constexpr std::uint32_t mostArguments = 1U << 16;
  /// A value of more bytes is not kept. No kernel has as much memory for all
  /// its arguments.
  static constexpr std::size_t mostBytes = std::size_t{1} << 20;

  /// \p settingsBefore is for tests: they begin where a long run would be.
  explicit RecordedArguments(std::uint64_t settingsBefore = 0);

  /// Gets the memory for a setting that the runtime has yet to accept. If this
  /// throws, all arguments are as they were.
  void reserve(std::uint32_t index, std::size_t size, const void *value);

  /// Remembers a setting for which memory was reserved. Allocates nothing.
  void record(std::uint32_t index, std::size_t size, const void *value);

  /// The recorded arguments, in the order of their indices.
  auto recorded() const {
    return llvm::make_pointee_range(
        llvm::ArrayRef<std::unique_ptr<RecordedArgument>>(arguments).take_front(
            recordedCount));
  }

  /// False if the kernel was given an argument that is not kept: for good if
  /// its index is too high, or until it is set to a smaller value. No variant
  /// may run then.
  bool areComplete() const { return lostCount == 0; }

  /// Settings so far. A program that sets arguments for days passes 2^32.
  std::uint64_t settingCount() const { return settings; }

  /// Sets all recorded arguments on \p target unless it has seen every setting.
  /// \p seen is how many it has seen, and is brought up to date. A failure is
  /// reported and the other arguments are set nevertheless; a value that is not
  /// kept is left out. If the runtime calls the application back and that makes
  /// a setting, \p target has not seen it. Returns whether the runtime accepted
  /// every argument.
  bool replay(cl_kernel target, std::uint64_t &seen) const;

private:
  static bool canBeKept(std::size_t size, const void *value) {
    return size <= mostBytes || !value;
  }
  void countRecorded();

  /// By index; null for an argument that was never set. None is ever moved,
  /// because the application may set others while one is being replayed.
  std::vector<std::unique_ptr<RecordedArgument>> arguments;
  std::uint64_t settings;
  std::size_t recordedCount = 1;
  std::size_t lostCount = 0;
};

} // namespace corvane
