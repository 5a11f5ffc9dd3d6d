// The question by which the agent learns why a program has no generated
// variants.

#pragma once

#include <CL/cl.h>

namespace corvane {

/// A parameter of clGetProgramInfo that the agent may ask for of a program that
/// was built. The answer is a text with its final zero; an empty one if the
/// program has generated variants or none are wanted. The layer answers; a
/// runtime that loads the agent itself refuses the parameter.
constexpr cl_program_info whyNotGeneratedQuery = 0x43410003;

} // namespace corvane
