// The calls that create, retain and release programs.

#include "layer/Programs.h"

#include "layer/Companion.h"
#include "layer/KnownBinaries.h"
#include "layer/UpperHooks.h"

#include <algorithm>

using namespace corvane::layer;

ObjectTable<cl_program, ProgramInfo> &corvane::layer::programs() {
  return neverDestroyed<ObjectTable<cl_program, ProgramInfo>>();
}

// The agent drops a record when a program is released. The reference that goes
// with it is one that was taken for the purpose.
void corvane::layer::forgetBuilds(cl_program program) {
  if (runtime().clRetainProgram(program) == CL_SUCCESS)
    agent().clReleaseProgram(program);
}

void corvane::layer::enterNewProgram(cl_program program) {
  forgetCompanion(program);
  if (programs().insert(program, ProgramInfo()))
    forgetBuilds(program);
}

void corvane::layer::enterUnseenProgram(cl_program program) {
  if (programs().has(program))
    return;
  cl_uint references = 0;
  const cl_int status =
      runtime().clGetProgramInfo(program, CL_PROGRAM_REFERENCE_COUNT,
                                 sizeof references, &references, nullptr);
  if (status == CL_SUCCESS)
    programs().insert(program, ProgramInfo(), std::max(references, 1u));
}

static cl_program entered(cl_program program) {
  if (program)
    enterNewProgram(program);
  return program;
}

cl_program CL_API_CALL upper::clCreateProgramWithSource(cl_context context,
                                                        cl_uint count,
                                                        const char **strings,
                                                        const size_t *lengths,
                                                        cl_int *errcodeRet) {
  return entered(agent().clCreateProgramWithSource(context, count, strings,
                                                   lengths, errcodeRet));
}

cl_program CL_API_CALL upper::clCreateProgramWithBinary(
    cl_context context, cl_uint numDevices, const cl_device_id *devices,
    const size_t *lengths, const unsigned char **binaries, cl_int *binaryStatus,
    cl_int *errcodeRet) {
  cl_program program = entered(
      agent().clCreateProgramWithBinary(context, numDevices, devices, lengths,
                                        binaries, binaryStatus, errcodeRet));
  recogniseBinaries(program, numDevices, lengths, binaries);
  return program;
}

cl_program CL_API_CALL upper::clCreateProgramWithBuiltInKernels(
    cl_context context, cl_uint numDevices, const cl_device_id *devices,
    const char *kernelNames, cl_int *errcodeRet) {
  return entered(agent().clCreateProgramWithBuiltInKernels(
      context, numDevices, devices, kernelNames, errcodeRet));
}

cl_program CL_API_CALL upper::clCreateProgramWithIL(cl_context context,
                                                    const void *il,
                                                    size_t length,
                                                    cl_int *errcodeRet) {
  return entered(
      runtime().clCreateProgramWithIL(context, il, length, errcodeRet));
}

cl_int CL_API_CALL upper::clRetainProgram(cl_program program) {
  const cl_int status = runtime().clRetainProgram(program);
  if (status == CL_SUCCESS)
    programs().retain(program);
  return status;
}

cl_int CL_API_CALL upper::clReleaseProgram(cl_program program) {
  if (programs().release(program) != Release::Alive)
    return agent().clReleaseProgram(program);
  const cl_int status = runtime().clReleaseProgram(program);
  if (status != CL_SUCCESS)
    programs().retain(program);
  return status;
}
