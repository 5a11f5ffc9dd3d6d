// The hooks of the test agent that tunes later.

#include "tests/system/layer/TuningAgent.h"

#include "base/LaunchTuningQuery.h"

#include <string>

using corvane::LaunchTuning;
using corvane::test::TuningAgent;

using Operation = cl_int(CL_API_CALL *)(void *agent, void *table, size_t size);

static constexpr size_t tableSize = 119 * sizeof(void *);

TuningAgent *tuningAgent() {
  static TuningAgent agent;
  return &agent;
}

static cl_kernel CL_API_CALL createKernel(cl_program program, const char *name,
                                          cl_int *status) {
  TuningAgent &agent = *tuningAgent();
  cl_kernel kernel = agent.runtime.clCreateKernel(program, name, status);
  const std::string variant = std::string(name) + "_coarsed_g0S4";
  cl_kernel kept =
      agent.runtime.clCreateKernel(program, variant.c_str(), nullptr);
  if (kept)
    agent.variants[kernel] = kept;
  return kernel;
}

static cl_int CL_API_CALL releaseKernel(cl_kernel kernel) {
  TuningAgent &agent = *tuningAgent();
  const auto found = agent.variants.find(kernel);
  if (found != agent.variants.end()) {
    agent.runtime.clReleaseKernel(found->second);
    agent.variants.erase(found);
  }
  return agent.runtime.clReleaseKernel(kernel);
}

static cl_int CL_API_CALL setArgument(cl_kernel kernel, cl_uint index,
                                      size_t size, const void *value) {
  TuningAgent &agent = *tuningAgent();
  const auto found = agent.variants.find(kernel);
  if (found != agent.variants.end())
    agent.runtime.clSetKernelArg(found->second, index, size, value);
  return agent.runtime.clSetKernelArg(kernel, index, size, value);
}

static cl_int CL_API_CALL launch(cl_command_queue queue, cl_kernel kernel,
                                 cl_uint workDim, const size_t *offset,
                                 const size_t *global, const size_t *local,
                                 cl_uint waitCount, const cl_event *waitList,
                                 cl_event *event) {
  TuningAgent &agent = *tuningAgent();
  ++agent.launches;
  LaunchTuning answer = LaunchTuning::NotNow;
  if (agent.asks) {
    answer = corvane::askForLaunchTuning(agent.runtime.clGetKernelInfo, kernel);
    agent.answers.push_back(static_cast<cl_uint>(answer));
  }
  std::vector<cl_event> waits(waitList, waitList + waitCount);
  const auto variant = agent.variants.find(kernel);
  const bool hasVariant = variant != agent.variants.end();
  if (answer == LaunchTuning::Allowed && hasVariant && agent.tunes) {
    waits.push_back(agent.runtime.clCreateUserEvent(agent.context, nullptr));
    agent.pending.push_back(waits.back());
  } else if (hasVariant && agent.runsVariants) {
    const size_t quarter = global[0] / 4;
    return agent.runtime.clEnqueueNDRangeKernel(queue, variant->second, workDim,
                                                offset, &quarter, local,
                                                waitCount, waitList, event);
  }
  return agent.runtime.clEnqueueNDRangeKernel(
      queue, kernel, workDim, offset, global, local,
      static_cast<cl_uint>(waits.size()),
      waits.empty() ? nullptr : waits.data(), event);
}

extern "C" cl_int CL_API_CALL clAgent_OnLoad(void *agent) {
  const Operation *operations = static_cast<Operation *>(agent);
  static cl_icd_dispatch table;
  const cl_int status = operations[7](agent, &table, tableSize);
  if (status != CL_SUCCESS)
    return status;
  tuningAgent()->runtime = table;
  table.clCreateKernel = createKernel;
  table.clReleaseKernel = releaseKernel;
  table.clSetKernelArg = setArgument;
  table.clEnqueueNDRangeKernel = launch;
  return operations[8](agent, &table, tableSize);
}

extern "C" void CL_API_CALL clAgent_OnUnload(void *) {}
