// The build logs of a program, screened for variants that spill registers.

#pragma once

#include "llvm/ADT/ArrayRef.h"

#include <CL/cl.h>

namespace corvane {

/// True when no device's build log flags a variant. Every device is asked; a
/// log that cannot be read is reported and flags nothing.
bool screenBuild(cl_program program, llvm::ArrayRef<cl_device_id> devices);

} // namespace corvane
