// What the small OpenCL programs of these tests have in common. They know
// nothing of the agent.

#pragma once

#include "examples/common/Failure.h"
#include "examples/common/Handle.h"

#include <CL/cl.h>

#include <string>
#include <vector>

namespace hosts {

using examples::Buffer;
using examples::check;
using examples::Context;
using examples::Kernel;
using examples::Program;
using examples::Queue;

using Event = examples::Handle<cl_event, clReleaseEvent>;
using Values = std::vector<cl_uint>;

/// The first device of the first platform, a context, and the kernels of these
/// programs. Every operation ends the program with a message when it fails.
class Session {
public:
  explicit Session(const char *buildOptions = "");

  cl_context context() const { return ownContext.get(); }
  cl_device_id device() const { return ownDevice; }

  Queue queue(cl_command_queue_properties properties = 0) const;
  Kernel kernel(const char *name) const;

  /// A buffer that holds a copy of \p values.
  Buffer bufferOf(const Values &values) const;

private:
  cl_device_id ownDevice = nullptr;
  Context ownContext;
  Program program;
};

/// Pseudo-random numbers that depend on \p seed alone.
Values someValues(size_t count, cl_uint seed);

void setArgument(cl_kernel kernel, cl_uint index, cl_mem value);
void setArgument(cl_kernel kernel, cl_uint index, cl_uint value);

/// Sets the arguments of "accumulate".
void setAccumulate(const Kernel &kernel, cl_mem y, cl_mem x, cl_uint factor);

/// Launches over one dimension; returns the event of the launch.
Event launch(cl_command_queue queue, const Kernel &kernel, size_t global,
             size_t local, const std::vector<cl_event> &waits = {});

/// Waits for all commands of \p queue, and until the runtime has called all
/// callbacks about their completion.
void finish(cl_command_queue queue);

/// How many references to \p kernel the runtime counts.
cl_uint referencesTo(cl_kernel kernel);

/// Finishes \p queue and waits until \p kernel has \p references again, as many
/// as before it was launched. A runtime may release its own reference some time
/// after the launch is over, and refuses to build the program until then.
void finish(cl_command_queue queue, cl_kernel kernel, cl_uint references);

/// All values of a buffer, after those events.
Values read(cl_command_queue queue, cl_mem buffer, size_t count,
            const std::vector<cl_event> &waits = {});

/// Writes a line with a name, the count and a hash of every byte.
void print(const std::string &name, const Values &values);

} // namespace hosts
