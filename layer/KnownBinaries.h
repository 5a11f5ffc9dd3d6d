// Binaries of programs whose source is known.

#pragma once

#include <CL/cl.h>

#include <cstddef>

namespace corvane::layer {

/// Remembers what the binaries in \p value were made of, which the runtime has
/// just given for \p program: an array of pointers, \p capacity bytes long, to
/// what the application has room for.
void rememberBinaries(cl_program program, void *value,
                      size_t capacity) noexcept;

/// Says of \p program, which was just entered, what its binaries were made of.
void recogniseBinaries(cl_program program, cl_uint count, const size_t *lengths,
                       const unsigned char **binaries) noexcept;

} // namespace corvane::layer
