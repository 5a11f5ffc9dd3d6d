// A program on a real OpenCL device; it knows nothing of the agent.

#pragma once

#include "examples/common/Failure.h"
#include "examples/common/Handle.h"

#include <CL/cl.h>

#include <cstddef>

namespace corvane::bench {

using examples::Buffer;
using examples::check;
using examples::Context;
using examples::Kernel;
using examples::Program;
using examples::Queue;
using Event = examples::Handle<cl_event, clReleaseEvent>;

/// The first device, with a queue that measures times, and the kernels of one
/// source. Every operation ends the program with a message when it fails.
class Session {
public:
  explicit Session(const char *source);

  cl_context context() const { return ownContext.get(); }
  cl_program program() const { return ownProgram.get(); }
  cl_command_queue queue() const { return ownQueue.get(); }

  Kernel kernel(const char *name) const;
  Buffer buffer(std::size_t size) const;

private:
  cl_device_id device = nullptr;
  Context ownContext;
  Queue ownQueue;
  Program ownProgram;
};

template <typename Value>
void setArgument(const Kernel &kernel, cl_uint index, const Value &value) {
  check(clSetKernelArg(kernel.get(), index, sizeof value, &value),
        "clSetKernelArg");
}

} // namespace corvane::bench
