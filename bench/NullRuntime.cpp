// The functions of the runtime that does nothing.

#include "bench/NullRuntime.h"

#include "agent/entry/Exports.h"

#include <cstdint>
#include <cstring>
#include <utility>

using namespace corvane;
using namespace corvane::bench;

namespace {
/// What the program holds, and the tables on both sides of the agent.
struct Shared {
  std::vector<std::string> names;
  DispatchTable bare{};
  DispatchTable hooked{};
  std::uintptr_t created = 0;
};
} // namespace

static Shared &shared() {
  static Shared theShared;
  return theShared;
}

// A kernel's handle carries the place of its name, so that a look-up costs
// nothing; the low bits keep handles apart and as aligned as real ones are.
static cl_kernel makeKernel(std::size_t name) {
  return reinterpret_cast<cl_kernel>((++shared().created << 16U) |
                                     (name << 4U));
}

static std::size_t nameOf(cl_kernel kernel) {
  return (reinterpret_cast<std::uintptr_t>(kernel) >> 4U) & 0xfffU;
}

static cl_int answer(const void *data, std::size_t size, std::size_t room,
                     void *value, std::size_t *sizeRet) {
  if (value && room >= size)
    std::memcpy(value, data, size);
  if (sizeRet)
    *sizeRet = size;
  return CL_SUCCESS;
}

static cl_int CL_API_CALL buildProgram(cl_program, cl_uint,
                                       const cl_device_id *, const char *,
                                       void(CL_CALLBACK *)(cl_program, void *),
                                       void *) {
  return CL_SUCCESS;
}

static cl_int CL_API_CALL getProgramInfo(cl_program, cl_program_info name,
                                         size_t room, void *value,
                                         size_t *sizeRet) {
  const cl_uint noDevices = 0;
  if (name == CL_PROGRAM_NUM_DEVICES)
    return answer(&noDevices, sizeof noDevices, room, value, sizeRet);
  return answer(nullptr, 0, 0, nullptr, sizeRet);
}

static cl_kernel CL_API_CALL createKernel(cl_program, const char *name,
                                          cl_int *status) {
  *status = CL_SUCCESS;
  const auto &names = shared().names;
  for (std::size_t i = 0; i < names.size(); ++i)
    if (names[i] == name)
      return makeKernel(i);
  *status = CL_INVALID_KERNEL_NAME;
  return nullptr;
}

static cl_int CL_API_CALL createKernels(cl_program, cl_uint room,
                                        cl_kernel *kernels, cl_uint *count) {
  const auto total = static_cast<cl_uint>(shared().names.size());
  for (cl_uint i = 0; kernels && i < total && i < room; ++i)
    kernels[i] = makeKernel(i);
  if (count)
    *count = total;
  return CL_SUCCESS;
}

static cl_int CL_API_CALL getKernelInfo(cl_kernel kernel, cl_kernel_info name,
                                        size_t room, void *value,
                                        size_t *sizeRet) {
  if (name == CL_KERNEL_FUNCTION_NAME) {
    const std::string &text = shared().names[nameOf(kernel)];
    return answer(text.c_str(), text.size() + 1, room, value, sizeRet);
  }
  const cl_uint one = 1; // reference or argument
  return answer(&one, sizeof one, room, value, sizeRet);
}

static cl_int CL_API_CALL releaseKernel(cl_kernel) { return CL_SUCCESS; }

static cl_int CL_API_CALL releaseProgram(cl_program) { return CL_SUCCESS; }

static cl_int CL_API_CALL setKernelArg(cl_kernel, cl_uint, size_t,
                                       const void *) {
  return CL_SUCCESS;
}

static cl_int CL_API_CALL enqueueKernel(cl_command_queue, cl_kernel, cl_uint,
                                        const size_t *, const size_t *,
                                        const size_t *, cl_uint,
                                        const cl_event *, cl_event *) {
  return CL_SUCCESS;
}

static cl_int CL_API_CALL getTable(AgentOperations *, void *table,
                                   std::size_t size) {
  std::memcpy(table, &shared().bare, size);
  return CL_SUCCESS;
}

static cl_int CL_API_CALL setTable(AgentOperations *, void *table,
                                   std::size_t size) {
  std::memcpy(&shared().hooked, table, size);
  return CL_SUCCESS;
}

NullRuntime::NullRuntime(std::vector<std::string> kernelNames) {
  shared().names = std::move(kernelNames);
  DispatchTable &table = shared().bare;
  table.clBuildProgram = buildProgram;
  table.clGetProgramInfo = getProgramInfo;
  table.clReleaseProgram = releaseProgram;
  table.clCreateKernel = createKernel;
  table.clCreateKernelsInProgram = createKernels;
  table.clGetKernelInfo = getKernelInfo;
  table.clReleaseKernel = releaseKernel;
  table.clSetKernelArg = setKernelArg;
  table.clEnqueueNDRangeKernel = enqueueKernel;
  operations.getICDDispatchTable = getTable;
  operations.setICDDispatchTable = setTable;
  clAgent_OnLoad(&operations);
  hooked().clBuildProgram(program(), 0, nullptr, nullptr, nullptr, nullptr);
}

NullRuntime::~NullRuntime() { clAgent_OnUnload(&operations); }

const DispatchTable &NullRuntime::bare() const { return shared().bare; }

const DispatchTable &NullRuntime::hooked() const { return shared().hooked; }

cl_program NullRuntime::program() const {
  return reinterpret_cast<cl_program>(std::uintptr_t{0x10000});
}

cl_command_queue NullRuntime::queue() const {
  return reinterpret_cast<cl_command_queue>(std::uintptr_t{0x20000});
}
