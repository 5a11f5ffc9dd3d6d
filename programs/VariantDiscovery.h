// Finds out which kernels a program has, and which of them are variants.

#pragma once

#include <CL/cl.h>

namespace corvane {

struct AgentState;

/// Sorts the kernels of \p program into kernel groups of its record, which is
/// made or gets one reference more. A program that is collected twice has its
/// groups twice. Failures are reported. Hold the agent lock.
void collectKernels(AgentState &state, cl_program program);

} // namespace corvane
