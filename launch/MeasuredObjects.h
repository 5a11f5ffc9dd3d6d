// What a launch is measured with: objects of the agent's own, and references to
// the application's.

#pragma once

#include "launch/LaunchBuffers.h"
#include "launch/VariantChoice.h"
#include "tuner/TuningJob.h"

#include "llvm/ADT/ArrayRef.h"

#include <CL/cl.h>

#include <optional>

namespace corvane {

/// The queue of a launch, as far as tuning needs to know it.
struct LaunchQueue {
  cl_context context = nullptr;
  cl_device_id device = nullptr;
  bool inOrder = false;
};

/// Asks the runtime; none if it does not say.
std::optional<LaunchQueue> describeQueue(cl_command_queue queue);

/// Makes a queue, the kernels of the application's version and of \p
/// candidates with the launch's arguments, and a user event; takes references
/// to all memory and samplers of \p record. None if the runtime refuses any of
/// it: then everything is given back. A candidate whose kernel alone cannot be
/// made is left out. Hold the agent lock.
std::optional<TunedLaunch>
measuredObjects(const KernelRecord &record, const Launch &launch,
                const LaunchQueue &queue, const LaunchBuffers &buffers,
                llvm::ArrayRef<VariantChoice> candidates);

} // namespace corvane
