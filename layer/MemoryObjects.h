// What the layer knows of the application's memory objects.

#pragma once

#include "layer/LayerTable.h"

#include <vector>

namespace corvane::layer {

/// The memory that a command may read or write.
struct TouchedMemory {
  /// Each a buffer or image that is no part of another: a sub-buffer, or an
  /// image made from a buffer, counts as that buffer.
  std::vector<cl_mem> objects;
  bool anything = false; ///< it cannot be told: any object

  /// Adds an object by the handle that the application uses; null is nothing.
  void add(cl_mem object);
  bool overlaps(const TouchedMemory &other) const;
};

/// Whether \p handle is an object that the application has created and not
/// given back.
bool isMemoryObject(cl_mem handle);

/// Whether the host has a region of this memory mapped.
bool isMapped(const TouchedMemory &memory);

/// Call when the host got a region of \p object, and when it gives one back.
void rememberMap(cl_mem object);
void rememberUnmap(cl_mem object);

/// Enters an object that was just made; \p mayBePart if it may be a part of
/// another, which the runtime is asked for then.
void enterMemoryObject(cl_mem object, bool mayBePart);

} // namespace corvane::layer
