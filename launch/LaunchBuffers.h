// Tells memory that we know nothing of from plain values, among arguments.

#pragma once

#include <CL/cl.h>

namespace corvane {

/// Whether \p value, set as argument \p index of \p kernel and no buffer of the
/// records', may be memory that the kernel can write to: a sub-buffer, an
/// image, a buffer that came from elsewhere. Asks the runtime only about values
/// that could be a handle; one that cannot tell anything leaves it at a plain
/// value.
bool mayBeWritableMemory(cl_kernel kernel, cl_uint index, cl_mem value);

} // namespace corvane
