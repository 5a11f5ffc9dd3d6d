// Remembers arguments and replays them just before a launch.

#pragma once

#include <CL/cl.h>

namespace corvane {

struct KernelRecord;

/// Gets the memory to remember a setting that the runtime has yet to accept for
/// \p record's kernel. An exception has no other effect.
void makeRoomForArgument(KernelRecord &record, cl_uint index, size_t size,
                         const void *value);

/// Remembers a setting for which there is room.
void recordArgument(KernelRecord &record, cl_uint index, size_t size,
                    const void *value);

/// Sets all recorded arguments on \p target, a variant of \p record's or its
/// own kernel, if it has missed a setting since it was last brought up to date.
/// A failure is reported and the replay goes on; the target counts as up to
/// date all the same. Returns whether the runtime took every argument.
bool replayArguments(KernelRecord &record, cl_kernel target);

/// Has the next replay set all arguments again.
void forgetReplay(KernelRecord &record, cl_kernel target);

} // namespace corvane
