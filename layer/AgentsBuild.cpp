// The agent's builds and links, as it makes them below itself.

#include "layer/AgentsBuild.h"

#include "layer/Programs.h"

#include <utility>

using namespace corvane::layer;

static thread_local AgentsBuild *agentsBuild = nullptr;

AgentsBuild::AgentsBuild(cl_program builtProgram)
    : program(builtProgram), outer(agentsBuild) {
  agentsBuild = this;
}

AgentsBuild::~AgentsBuild() { agentsBuild = outer; }

/// The status of the attempt that was made, once; nothing when the runtime must
/// be asked.
static std::optional<cl_int> takeAttempt() {
  return agentsBuild ? std::exchange(agentsBuild->attempted, std::nullopt)
                     : std::nullopt;
}

void corvane::layer::forgetBuildsBeforeCollection(cl_program program) {
  if (agentsBuild && agentsBuild->program == program && programs().has(program))
    forgetBuilds(program);
}

// The agent may pass over what was built; then no earlier build counts either.
static cl_int CL_API_CALL buildBelow(cl_program program, cl_uint numDevices,
                                     const cl_device_id *devices,
                                     const char *options, Notify notify,
                                     void *userData) {
  if (const std::optional<cl_int> attempted = takeAttempt()) {
    forgetBuildsBeforeCollection(program);
    return *attempted;
  }
  const cl_int status = buildWithoutKernels([&] {
    return runtime().clBuildProgram(program, numDevices, devices, options,
                                    notify, userData);
  });
  forgetBuildsBeforeCollection(program);
  if (status == CL_SUCCESS && agentsBuild && agentsBuild->notification)
    agentsBuild->notification->hear(program);
  return status;
}

// The agent may look at the program as soon as it has it. Should it still know
// one that is gone and had the same handle, it must forget that one before.
static cl_program CL_API_CALL linkBelow(cl_context context, cl_uint numDevices,
                                        const cl_device_id *devices,
                                        const char *options, cl_uint numInputs,
                                        const cl_program *inputs, Notify notify,
                                        void *userData, cl_int *errcodeRet) {
  if (const std::optional<cl_int> attempted = takeAttempt()) {
    if (errcodeRet)
      *errcodeRet = *attempted;
    return agentsBuild->program;
  }
  cl_program program =
      runtime().clLinkProgram(context, numDevices, devices, options, numInputs,
                              inputs, notify, userData, errcodeRet);
  if (!program)
    return program;
  enterNewProgram(program);
  if (agentsBuild && agentsBuild->notification)
    agentsBuild->notification->hear(program);
  return program;
}

void corvane::layer::watchBuilds(cl_icd_dispatch &below) {
  replace(below.clBuildProgram, &buildBelow);
  replace(below.clLinkProgram, &linkBelow);
}
