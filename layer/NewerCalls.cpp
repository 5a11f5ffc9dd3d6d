// Creation of queues and buffers by a list of properties.

#include "layer/NewerCalls.h"

#include <cstddef>
#include <vector>

using namespace corvane::layer;

namespace {
/// Where the calls went before, and where a buffer without properties goes.
struct NextCalls {
  decltype(cl_icd_dispatch::clCreateCommandQueueWithProperties) createQueue;
  decltype(cl_icd_dispatch::clCreateBufferWithProperties) createBuffer;
  decltype(cl_icd_dispatch::clCreateBuffer) createPlainBuffer;
};
} // namespace

// Written once, before any call can come.
static NextCalls next;

// The list that the application passed, with profiling in it. A null list
// counts as empty, and every list ends with a zero.
static std::vector<cl_queue_properties>
withProfiling(const cl_queue_properties *properties) {
  std::vector<cl_queue_properties> extended;
  bool merged = false;
  for (const auto *name = properties; name && *name != 0; name += 2) {
    cl_queue_properties value = name[1];
    if (*name == CL_QUEUE_PROPERTIES) {
      value |= CL_QUEUE_PROFILING_ENABLE;
      merged = true;
    }
    extended.insert(extended.end(), {*name, value});
  }
  if (!merged)
    extended.insert(extended.end(),
                    {CL_QUEUE_PROPERTIES, CL_QUEUE_PROFILING_ENABLE});
  extended.push_back(0);
  return extended;
}

static cl_command_queue CL_API_CALL
createQueue(cl_context context, cl_device_id device,
            const cl_queue_properties *properties, cl_int *errcodeRet) {
  cl_int status = CL_SUCCESS;
  cl_command_queue queue = next.createQueue(
      context, device, withProfiling(properties).data(), &status);
  // A queue without times is better than none, and the error that the
  // application gets must be about its own wishes.
  if (!queue || status != CL_SUCCESS)
    return next.createQueue(context, device, properties, errcodeRet);
  if (errcodeRet)
    *errcodeRet = status;
  return queue;
}

static cl_mem CL_API_CALL createBuffer(cl_context context,
                                       const cl_mem_properties *properties,
                                       cl_mem_flags flags, size_t size,
                                       void *hostPtr, cl_int *errcodeRet) {
  if (!properties || *properties == 0)
    return next.createPlainBuffer(context, flags, size, hostPtr, errcodeRet);
  return next.createBuffer(context, properties, flags, size, hostPtr,
                           errcodeRet);
}

void corvane::layer::serveNewerCalls(LayerTable &table) {
  // What the loader does not offer is null in our copy of its table.
  cl_icd_dispatch &entries = table.entries;
  next.createPlainBuffer = entries.clCreateBuffer;
  replaceEntry(entries.clCreateCommandQueueWithProperties, next.createQueue,
               &createQueue);
  replaceEntry(entries.clCreateBufferWithProperties, next.createBuffer,
               &createBuffer);
}
