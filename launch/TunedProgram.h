// The programs and devices of launches, as the run record numbers them.

#pragma once

#include "launch/KernelRecord.h"
#include "launch/Tuning.h"

#include <CL/cl.h>

#include <cstdint>
#include <optional>

namespace corvane {

struct AgentState;

/// The program of \p record as it is built for \p device. Asks the runtime, and
/// tells the record of the run, when a kernel object is launched there for the
/// first time. Null if nothing identifies the program. Lasts as long as
/// \p tuning. Hold the agent lock.
const TunedProgram *tunedProgram(Tuning &tuning, AgentState &state,
                                 KernelRecord &record, cl_device_id device);

/// Tells the record of the run the program of \p kernel, which has no record of
/// its own: a build whose log complains of a variant leaves none. Hold the
/// agent lock.
void tellProgramOf(Tuning &tuning, AgentState &state, cl_kernel kernel,
                   cl_device_id device);

/// The number of \p device in the record of the run; none if the runtime does
/// not say what identifies it. Hold the agent lock.
std::optional<std::uint32_t> tunedDevice(Tuning &tuning, cl_device_id device);

} // namespace corvane
