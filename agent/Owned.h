// Owns what the runtime hands out: references to its objects, and memory for
// its answers.

#pragma once

#include "agent/RuntimeTable.h"
#include "base/OwnedHandle.h"

#include <CL/cl.h>

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace corvane {

/// How the runtime's table retains and releases each kind of object.
struct RuntimeReferences {
#define CORVANE_REFERENCES(Handle, Name)                                       \
  static bool retain(Handle object) {                                          \
    return runtime().clRetain##Name(object) == CL_SUCCESS;                     \
  }                                                                            \
  static void release(Handle object) {                                         \
    (void)runtime().clRelease##Name(object);                                   \
  }
  CORVANE_REFERENCES(cl_command_queue, CommandQueue)
  CORVANE_REFERENCES(cl_context, Context)
  CORVANE_REFERENCES(cl_event, Event)
  CORVANE_REFERENCES(cl_kernel, Kernel)
  CORVANE_REFERENCES(cl_mem, MemObject)
  CORVANE_REFERENCES(cl_program, Program)
  CORVANE_REFERENCES(cl_sampler, Sampler)
#undef CORVANE_REFERENCES
};

/// One reference of the agent's to an object of the runtime's.
template <typename Handle> using Owned = OwnedHandle<Handle, RuntimeReferences>;

/// Releases memory from the C library.
struct FreeMemory {
  void operator()(void *memory) const { std::free(memory); }
};

/// An array from allocateZeroed; null when there was no memory for it.
template <typename Element>
using ZeroedArray = std::unique_ptr<Element[], FreeMemory>;

/// \p count zeroed elements, or null when there is no memory for them. For
/// lengths that a runtime tells: the system provides memory only where it is
/// written, so a false length costs nothing.
template <typename Element>
ZeroedArray<Element> allocateZeroed(std::size_t count) {
  return ZeroedArray<Element>(
      static_cast<Element *>(std::calloc(count, sizeof(Element))));
}

} // namespace corvane
