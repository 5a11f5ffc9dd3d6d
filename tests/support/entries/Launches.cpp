// Launches of the scripted runtime: arguments are taken when they are enqueued.

#include "tests/support/entries/Enqueue.h"
#include "tests/support/entries/Entries.h"

#include "tests/support/Words.h"

#include <algorithm>

using namespace corvane::test;

using Lock = std::lock_guard<std::recursive_mutex>;

static std::shared_ptr<Buffer> bufferIn(World &world,
                                        const Argument &argument) {
  cl_mem handle = nullptr;
  if (argument.value.size() != sizeof handle)
    return nullptr;
  std::memcpy(&handle, argument.value.data(), sizeof handle);
  return world.objects.find(handle);
}

static void takeArguments(World &world, const Kernel &kernel, Launch &launch,
                          Command &command) {
  for (const std::optional<Argument> &argument : kernel.arguments) {
    const Argument taken = argument.value_or(Argument{});
    const auto buffer = bufferIn(world, taken);
    launch.values.push_back(taken.value);
    launch.buffers.push_back(buffer ? &buffer->bytes : nullptr);
    if (buffer)
      command.in.push_back(buffer);
  }
}

static void takeSizes(Launch &launch, cl_uint workDim,
                      const std::size_t *global, const std::size_t *local) {
  launch.workDim = workDim;
  std::copy_n(global, workDim, launch.global.begin());
  if (local)
    std::copy_n(local, workDim, launch.local.begin());
}

static cl_int check(const World &world, const Kernel *kernel, cl_uint workDim,
                    const std::size_t *global) {
  if (!kernel)
    return CL_INVALID_KERNEL;
  if (workDim < 1 || workDim > 3)
    return CL_INVALID_WORK_DIMENSION;
  if (!global)
    return CL_INVALID_GLOBAL_WORK_SIZE;
  const auto isSet = [](const auto &argument) { return argument.has_value(); };
  const bool complete =
      world.unsetArgumentsAllowed ||
      std::all_of(kernel->arguments.begin(), kernel->arguments.end(), isSet);
  return complete ? CL_SUCCESS : CL_INVALID_KERNEL_ARGS;
}

// Runs the kernel and gives its event the times that the test chose.
static void run(World &world, const Kernel &kernel, const Launch &launch,
                Event &event) {
  if (kernel.script.body)
    kernel.script.body(launch);
  Lock guard(world.lock);
  std::tie(event.start, event.end) = world.nextTimes(kernel.script.name);
}

static void takeWork(World &world, const std::shared_ptr<Kernel> &kernel,
                     const Launch &launch, Command &command) {
  command.in.push_back(kernel);
  // The command owns the work and holds the event itself.
  command.work = [&world, kernel, launch, event = command.event.get()] {
    run(world, *kernel, launch, *event);
  };
  const auto status = world.endStatus.find(kernel->script.name);
  if (status != world.endStatus.end())
    command.endStatus = status->second;
}

cl_int CL_API_CALL fake::clEnqueueNDRangeKernel(
    cl_command_queue queue, cl_kernel handle, cl_uint workDim,
    const size_t *offset, const size_t *global, const size_t *local,
    cl_uint waitCount, const cl_event *waitList, cl_event *event) {
  World &world = World::current("clEnqueueNDRangeKernel");
  const cl_uint shown = std::min<cl_uint>(workDim, 3);
  const auto plan = [&](Command &command) -> cl_int {
    const auto kernel = world.objects.find(handle);
    if (const cl_int status = check(world, kernel.get(), workDim, global))
      return status;
    Launch launch;
    takeSizes(launch, workDim, global, local);
    takeArguments(world, *kernel, launch, command);
    takeWork(world, kernel, launch, command);
    return CL_SUCCESS;
  };
  return enqueue(world, "clEnqueueNDRangeKernel",
                 {world.say(queue), world.say(handle), std::to_string(workDim),
                  sizes(shown, offset), sizes(shown, global),
                  sizes(shown, local)},
                 {queue, waitCount, waitList, event}, plan);
}

// Without a wait list the marker waits for all commands, in other queues as
// well.
cl_int CL_API_CALL fake::clEnqueueMarkerWithWaitList(cl_command_queue queue,
                                                     cl_uint waitCount,
                                                     const cl_event *waitList,
                                                     cl_event *event) {
  World &world = World::current("clEnqueueMarkerWithWaitList");
  return enqueue(world, "clEnqueueMarkerWithWaitList", {world.say(queue)},
                 {queue, waitCount, waitList, event}, [&](Command &command) {
                   if (waitCount == 0)
                     command.waitList = world.commands.unfinished();
                   return CL_SUCCESS;
                 });
}
