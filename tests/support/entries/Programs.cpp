// Programs of the scripted runtime: made, built, linked and released.

#include "tests/support/entries/Entries.h"

#include "tests/support/Words.h"
#include "tests/support/World.h"

using namespace corvane::test;

using Lock = std::lock_guard<std::recursive_mutex>;
using Notify = void(CL_CALLBACK *)(cl_program, void *);

// Takes the next of the programs that the test has prepared; a program without
// kernels if there is none.
static std::shared_ptr<Program>
nextOf(World &world, std::deque<std::shared_ptr<Program>> &prepared) {
  if (prepared.empty()) {
    auto program = std::make_shared<Program>();
    world.objects.add<cl_program>(program);
    return program;
  }
  std::shared_ptr<Program> program = prepared.front();
  prepared.pop_front();
  program->references = 1;
  return program;
}

static cl_program handleOf(const Program &program) {
  return static_cast<cl_program>(program.handle);
}

cl_program CL_API_CALL fake::clCreateProgramWithSource(cl_context context,
                                                       cl_uint count,
                                                       const char **strings,
                                                       const size_t *lengths,
                                                       cl_int *status) {
  World &world = World::current("clCreateProgramWithSource");
  if (const auto failure =
          world.begin("clCreateProgramWithSource",
                      {world.say(context), std::to_string(count),
                       place(strings), place(lengths), place(status)})) {
    setStatus(status, *failure);
    return nullptr;
  }
  Lock guard(world.lock);
  setStatus(status, CL_SUCCESS);
  const auto program = nextOf(world, world.nextFromSource);
  program->context = context;
  return handleOf(*program);
}

cl_int CL_API_CALL fake::clRetainProgram(cl_program program) {
  return World::current("clRetainProgram")
      .retain("clRetainProgram", program, CL_INVALID_PROGRAM);
}

cl_int CL_API_CALL fake::clReleaseProgram(cl_program program) {
  return World::current("clReleaseProgram")
      .release("clReleaseProgram", program, CL_INVALID_PROGRAM);
}

static cl_int build(World &world, cl_program handle, const char *options) {
  Lock guard(world.lock);
  const auto program = world.objects.find(handle);
  if (!program)
    return CL_INVALID_PROGRAM;
  ++program->buildCount;
  program->options = options ? options : "";
  return program->latest()->status;
}

cl_int CL_API_CALL fake::clBuildProgram(cl_program program, cl_uint count,
                                        const cl_device_id *devices,
                                        const char *options, Notify notify,
                                        void *userData) {
  World &world = World::current("clBuildProgram");
  if (const auto failure = world.begin(
          "clBuildProgram", {world.say(program), world.sayAll(count, devices),
                             quoted(options), place(notify), place(userData)}))
    return *failure;
  const cl_int status = build(world, program, options);
  if (notify)
    notify(program, userData);
  return status;
}

cl_program CL_API_CALL fake::clLinkProgram(
    cl_context context, cl_uint count, const cl_device_id *devices,
    const char *options, cl_uint inputCount, const cl_program *inputs,
    Notify notify, void *userData, cl_int *status) {
  World &world = World::current("clLinkProgram");
  if (const auto failure = world.begin(
          "clLinkProgram", {world.say(context), world.sayAll(count, devices),
                            quoted(options), world.sayAll(inputCount, inputs),
                            place(notify), place(userData), place(status)})) {
    setStatus(status, *failure);
    return nullptr;
  }
  cl_program linked = nullptr;
  {
    Lock guard(world.lock);
    const auto program = nextOf(world, world.nextLinked);
    ++program->buildCount;
    setStatus(status, program->latest()->status);
    linked = handleOf(*program);
  }
  if (notify)
    notify(linked, userData);
  return linked;
}
