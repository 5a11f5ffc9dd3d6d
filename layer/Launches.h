// A launch as the application asked for it, and its way to the runtime.

#pragma once

#include "layer/CallContext.h"
#include "layer/LayerTable.h"

namespace corvane::layer {

/// The arguments of clEnqueueNDRangeKernel.
struct Launch {
  cl_command_queue queue;
  cl_kernel kernel;
  cl_uint workDim;
  const size_t *globalOffset;
  const size_t *globalSize;
  const size_t *localSize;
  cl_uint waitCount;
  const cl_event *waitList;
  cl_event *event;

  cl_int enqueueThrough(const cl_icd_dispatch &calls) const;

  /// Takes over the kernel and its range, but not the queue and the events.
  void takeWork(const Launch &other);
};

/// Whether the application's kernel runs as it is: no variant could do what the
/// launch asks for, which is on shared virtual memory or has a global offset.
bool mustRunAlone(const Launch &launch);

/// Has the agent launch; the runtime does if the agent launches nothing, as it
/// does after it has written its results. \p call is this launch's context.
cl_int launchThroughAgent(const Launch &launch, CallContext &call);

} // namespace corvane::layer
