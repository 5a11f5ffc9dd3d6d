// Which kernels the application has, and which variants stand beside each.

#pragma once

#include "llvm/ADT/StringRef.h"

#include <CL/cl.h>

namespace corvane {

struct AgentState;

/// Keeps a record of \p kernel, if its program is known, and has the runtime
/// create the kernel's variants. A variant that cannot be created is reported.
/// Behind an exception there is neither record nor variant. Hold the agent
/// lock.
void registerKernel(AgentState &state, cl_program program, cl_kernel kernel);

/// The same for a kernel whose name the caller has read.
void registerKernel(AgentState &state, cl_program program, cl_kernel kernel,
                    llvm::StringRef name);

/// Forgets \p kernel, which the runtime has destroyed, and releases its
/// variants. Does nothing for an unknown kernel. Hold the agent lock.
void dropKernel(AgentState &state, cl_kernel kernel);

} // namespace corvane
