// References to OpenCL objects that the agent holds.

#pragma once

#include "agent/RuntimeTable.h"
#include "base/OwnedHandle.h"

#include <CL/cl.h>

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

} // namespace corvane
