// Programs as these tests build them, with all that an application can ask.

#pragma once

#include "tests/system/autotune/hosts/Host.h"

namespace hosts {

/// Build options that the test wants: none, or those that leave the variants
/// out.
extern std::string commonOptions;

/// Reads the arguments of `main`: the common options, if any.
void readOptions(int argumentCount, char **arguments);

/// A program from the kernels of these tests; not built.
Program sourceProgram(const Session &session);

/// Builds for the session's device with the common options and \p options.
cl_int build(const Session &session, const Program &program,
             const std::string &options = "");

/// A program that was compiled and can be linked.
Program compiledProgram(const Session &session,
                        const std::string &options = "");

/// Launches a kernel of one buffer, "negate" or one like it, and prints the
/// result.
void runNegate(const Session &session, cl_kernel kernel);

/// Launches "accumulate" over 1024 work-items and prints the result.
void runAccumulate(const Session &session, cl_kernel kernel, size_t local);

/// The kernel's name.
std::string nameOf(cl_kernel kernel);

/// How many references the runtime counts.
cl_uint referencesTo(cl_program program);

} // namespace hosts
