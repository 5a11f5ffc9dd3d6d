// The application's memory objects, as far as commands may share memory.

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

/// Notes that the host got or gave back a region of \p object.
void noteMap(cl_mem object);
void noteUnmap(cl_mem object);

/// Has the calls that create, retain and release memory objects followed.
/// \p next are the calls to make; it must live as long as the process.
void followMemoryObjects(cl_icd_dispatch &calls, const cl_icd_dispatch &next);

} // namespace corvane::layer
