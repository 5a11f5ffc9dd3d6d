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

  bool isSet = false;  ///< false: only room was made for it
  bool isLost = false; ///< last set to a value that is too large to be kept

  /// Replaced and never moved when a value needs more room. Shared while a
  /// runtime reads the value: it may call the application back, which sets the
  /// argument again.
  std::shared_ptr<std::vector<unsigned char>> bytes;
};

/// The arguments of a kernel, by index. Guarded by the agent lock.
///
/// Arguments beyond a gap are stored, but they do not count as recorded until
/// the gap is filled. The first argument counts as recorded from the start,
/// with size zero and no value.
class RecordedArguments {
public:
  /// An index beyond could only be reached over as many others, and no kernel
  /// has as many arguments: a runtime that accepts it is wrong.
  static constexpr std::uint32_t mostArguments = 1U << 16;
  /// The same goes for a value larger than the memory of any kernel for all its
  /// arguments.
  static constexpr std::size_t mostBytes = std::size_t{1} << 20;

  /// \p settingsBefore is for tests: they begin where a long run would be.
  explicit RecordedArguments(std::uint64_t settingsBefore = 0);

  /// Gets the memory to remember a setting that the runtime has yet to accept.
  /// An exception has no other effect.
  void makeRoom(std::uint32_t index, std::size_t size, const void *value);

  /// Remembers a setting for which there is room. Allocates nothing.
  void record(std::uint32_t index, std::size_t size, const void *value);

  /// The recorded arguments, in the order of their indices.
  auto recorded() const {
    return llvm::make_pointee_range(
        llvm::ArrayRef<std::unique_ptr<RecordedArgument>>(arguments).take_front(
            recordedCount));
  }

  /// False if the kernel was given an argument that is not kept: its index is
  /// out of reach, or its value until it is set again. No variant may run then.
  bool areComplete() const { return lostCount == 0; }

  /// Settings so far. A program that sets arguments for days passes 2^32.
  std::uint64_t settingCount() const { return settings; }

  /// Sets all recorded arguments on \p target if it has seen fewer settings
  /// than there were. \p seen says how many it has seen, and is brought up to
  /// date: a failure is reported and the rest is set nevertheless, and a value
  /// that is not kept is left out. A setting that the application makes within,
  /// when the runtime calls it back, counts as not seen. Returns whether the
  /// runtime accepted every argument.
  bool replay(cl_kernel target, std::uint64_t &seen) const;

private:
  static bool canBeKept(std::size_t size, const void *value) {
    return size <= mostBytes || !value;
  }
  void countRecorded();

  /// By index; null for an argument that was never set. Each stays where it is,
  /// because the application may set another while one is being replayed.
  std::vector<std::unique_ptr<RecordedArgument>> arguments;
  std::uint64_t settings;
  std::size_t recordedCount = 1;
  std::size_t lostCount = 0;
};

} // namespace corvane
