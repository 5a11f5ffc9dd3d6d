// Programs: lists of kernel names, which count as built from the start.

#include "bench/null/NullObjects.h"
#include "bench/null/NullRuntime.h"

#include <sstream>

using namespace corvane;
using namespace corvane::bench;

static cl_program CL_API_CALL createProgram(cl_context, cl_uint,
                                            const char **strings,
                                            const std::size_t *,
                                            cl_int *status) {
  auto *program = new _cl_program;
  std::istringstream source(strings[0]);
  for (std::string name; source >> name;) {
    program->places[name] = static_cast<cl_uint>(program->names.size());
    program->names.push_back(name);
  }
  *status = CL_SUCCESS;
  return program;
}

static cl_int CL_API_CALL retainProgram(cl_program program) {
  ++program->references;
  return CL_SUCCESS;
}

static cl_int CL_API_CALL releaseProgram(cl_program program) {
  if (--program->references == 0)
    delete program;
  return CL_SUCCESS;
}

static cl_int CL_API_CALL buildProgram(cl_program, cl_uint,
                                       const cl_device_id *, const char *,
                                       void(CL_CALLBACK *)(cl_program, void *),
                                       void *) {
  return CL_SUCCESS;
}

static std::string joined(const std::vector<std::string> &names) {
  std::string text;
  for (const std::string &name : names)
    text += (text.empty() ? "" : ";") + name;
  return text;
}

static cl_int CL_API_CALL getProgramInfo(cl_program program,
                                         cl_program_info name,
                                         std::size_t capacity, void *value,
                                         std::size_t *sizeRet) {
  static char device;
  cl_device_id devices[] = {reinterpret_cast<cl_device_id>(&device)};
  const cl_uint deviceCount = 1;
  const std::size_t kernelCount = program->names.size();
  switch (name) {
  case CL_PROGRAM_NUM_DEVICES:
    return null::answer(&deviceCount, sizeof deviceCount, capacity, value,
                        sizeRet);
  case CL_PROGRAM_DEVICES:
    return null::answer(devices, sizeof devices, capacity, value, sizeRet);
  case CL_PROGRAM_NUM_KERNELS:
    return null::answer(&kernelCount, sizeof kernelCount, capacity, value,
                        sizeRet);
  case CL_PROGRAM_KERNEL_NAMES: {
    const std::string names = joined(program->names);
    return null::answer(names.c_str(), names.size() + 1, capacity, value,
                        sizeRet);
  }
  default:
    return CL_INVALID_VALUE;
  }
}

// An empty log.
static cl_int CL_API_CALL getBuildInfo(cl_program, cl_device_id,
                                       cl_program_build_info,
                                       std::size_t capacity, void *value,
                                       std::size_t *sizeRet) {
  return null::answer("", 1, capacity, value, sizeRet);
}

void null::addPrograms(DispatchTable &table) {
  table.clCreateProgramWithSource = createProgram;
  table.clRetainProgram = retainProgram;
  table.clReleaseProgram = releaseProgram;
  table.clBuildProgram = buildProgram;
  table.clGetProgramInfo = getProgramInfo;
  table.clGetProgramBuildInfo = getBuildInfo;
}
