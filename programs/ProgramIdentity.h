// What tells one program from another in run records and profiles.

#pragma once

#include <CL/cl.h>

#include <optional>
#include <string>

namespace corvane {

struct AgentState;

/// The hash of \p program as it is built for \p device: of its source and build
/// options, or of its binary for the device if it has no source. The same in
/// every process. docs/run-record.md says how it is made. In 64 hexadecimal
/// digits; none if the runtime tells neither.
///
/// Computed when it is asked for the first time, and remembered until the next
/// build while the agent has a record of the program. The program must live:
/// the application may have released it, but then a kernel of it is needed.
/// Hold the agent lock.
std::optional<std::string> programHash(AgentState &state, cl_program program,
                                       cl_device_id device);

} // namespace corvane
