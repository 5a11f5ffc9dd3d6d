// Clang's own declarations for OpenCL programs, so that none is needed at run
// time.
#pragma once

#include "llvm/ADT/StringRef.h"

namespace corvane::coarsening {

/// The text of Clang's opencl-c-base.h. What it leaves out, Clang knows itself.
llvm::StringRef openClBaseHeader();

} // namespace corvane::coarsening
