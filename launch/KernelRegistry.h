// Creates and drops the records of the application's kernels.

#pragma once

#include "llvm/ADT/StringRef.h"

#include <CL/cl.h>

namespace corvane {

struct AgentState;

/// Keeps a record of \p kernel, if its program is known, and has the runtime
/// create the kernel's variants. A variant that cannot be created is reported.
/// If this throws, there is neither a record nor a variant. Hold the agent
/// lock.
void registerKernel(AgentState &state, cl_program program, cl_kernel kernel);

/// The same for a kernel whose name the caller has read.
void registerKernel(AgentState &state, cl_program program, cl_kernel kernel,
                    llvm::StringRef name);

/// Drops the record of \p kernel, which the runtime has destroyed, and releases
/// its variants. Does nothing for an unknown kernel. Hold the agent lock.
void dropKernel(AgentState &state, cl_kernel kernel);

} // namespace corvane
