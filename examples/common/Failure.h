// Ends an example with one clear line when something cannot work.

#pragma once

#include <CL/cl.h>

#include <string>

namespace examples {

/// Names the program in messages; call it first in `main`. \p name must live
/// as long as the program.
void setProgramName(const char *name);

/// Writes the program's name and \p message as a line to the standard error
/// stream and ends the program with exit code 1.
[[noreturn]] void fail(const std::string &message);

/// Ends the program when \p status is an error of the OpenCL call \p call.
void check(cl_int status, const char *call);

} // namespace examples
