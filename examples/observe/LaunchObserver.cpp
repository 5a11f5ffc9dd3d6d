// A loader layer that writes down which kernels reach the OpenCL runtime.
//
// Each launch adds a line to the file named by LAUNCH_OBSERVER_FILE, or to the
// standard error stream if there is none:
//   launch kernel=NAME global=64x32 local=16x4
// Name this layer first in OPENCL_LAYERS: then it is the last one before the
// runtime, and sees what the other layers have made of a launch.

#include <CL/cl_layer.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

static cl_icd_dispatch below;    ///< as the loader gave it
static cl_icd_dispatch observed; ///< the same with our launch

static std::string kernelName(cl_kernel kernel) {
  char name[1024] = "";
  const cl_int status = below.clGetKernelInfo(kernel, CL_KERNEL_FUNCTION_NAME,
                                              sizeof(name), name, nullptr);
  return status == CL_SUCCESS ? name : "unknown";
}

/// "64x32", or "none" for an absent array.
static std::string sizesText(cl_uint workDim, const size_t *sizes) {
  if (!sizes)
    return "none";
  std::string text;
  for (cl_uint i = 0; i < std::min<cl_uint>(workDim, 3); ++i)
    text += (i ? "x" : "") + std::to_string(sizes[i]);
  return text;
}

/// Opened for every line, so that a program which ends badly loses none.
static void writeLine(const std::string &line) {
  const char *name = std::getenv("LAUNCH_OBSERVER_FILE");
  std::FILE *file = name ? std::fopen(name, "a") : nullptr;
  std::fputs(line.c_str(), file ? file : stderr);
  if (file)
    std::fclose(file);
}

static cl_int CL_API_CALL
observeLaunch(cl_command_queue queue, cl_kernel kernel, cl_uint workDim,
              const size_t *globalOffset, const size_t *globalSize,
              const size_t *localSize, cl_uint waitCount,
              const cl_event *waitList, cl_event *event) {
  writeLine("launch kernel=" + kernelName(kernel) +
            " global=" + sizesText(workDim, globalSize) +
            " local=" + sizesText(workDim, localSize) + "\n");
  return below.clEnqueueNDRangeKernel(queue, kernel, workDim, globalOffset,
                                      globalSize, localSize, waitCount,
                                      waitList, event);
}

cl_int CL_API_CALL clGetLayerInfo(cl_layer_info paramName,
                                  size_t paramValueSize, void *paramValue,
                                  size_t *paramValueSizeRet) {
  const cl_layer_api_version version = CL_LAYER_API_VERSION_100;
  if (paramName != CL_LAYER_API_VERSION ||
      (paramValue && paramValueSize < sizeof(version)))
    return CL_INVALID_VALUE;
  if (paramValue)
    std::memcpy(paramValue, &version, sizeof(version));
  if (paramValueSizeRet)
    *paramValueSizeRet = sizeof(version);
  return CL_SUCCESS;
}

cl_int CL_API_CALL clInitLayer(cl_uint numEntries,
                               const cl_icd_dispatch *targetDispatch,
                               cl_uint *numEntriesRet,
                               const cl_icd_dispatch **layerDispatchRet) {
  constexpr size_t neededEntries =
      offsetof(cl_icd_dispatch, clEnqueueNDRangeKernel) / sizeof(void *) + 1;
  if (!targetDispatch || !numEntriesRet || !layerDispatchRet ||
      numEntries < neededEntries)
    return CL_INVALID_VALUE;

  const cl_uint known = sizeof(cl_icd_dispatch) / sizeof(void *);
  *numEntriesRet = std::min(numEntries, known);
  std::memcpy(&below, targetDispatch, *numEntriesRet * sizeof(void *));
  observed = below;
  observed.clEnqueueNDRangeKernel = observeLaunch;
  *layerDispatchRet = &observed;
  return CL_SUCCESS;
}
