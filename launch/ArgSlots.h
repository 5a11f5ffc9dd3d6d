// The arguments of one kernel as the application has set them.

#pragma once

#include "launch/ArgSlot.h"

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace corvane {

/// Slots by argument index. None ever moves: the runtime may be reading a value
/// while it calls somebody back who sets another.
class ArgSlots {
public:
  /// The slot of an argument; null if it was never set. The first one is there
  /// from the start, empty and without a value.
  ArgSlot *find(std::size_t index) {
    return const_cast<ArgSlot *>(std::as_const(*this).find(index));
  }
  const ArgSlot *find(std::size_t index) const {
    if (index == 0)
      return &first;
    return index <= others.size() ? others[index - 1].get() : nullptr;
  }

  /// Makes a slot that is not there. An exception leaves all slots as they
  /// were.
  ArgSlot &make(std::size_t index) {
    if (index > others.size())
      others.resize(index);
    others[index - 1] = std::make_unique<ArgSlot>();
    return *others[index - 1];
  }

private:
  ArgSlot first{0}; ///< with the record, because every kernel has it
  std::vector<std::unique_ptr<ArgSlot>> others;
};

} // namespace corvane
