// Buffers made by the call after OpenCL 1.2, led to where the agent sees them.

#include "layer/Buffers.h"

using namespace corvane::layer;

static cl_mem CL_API_CALL createBuffer(cl_context context,
                                       const cl_mem_properties *properties,
                                       cl_mem_flags flags, size_t size,
                                       void *hostPtr, cl_int *errcodeRet) {
  if (!properties || *properties == 0)
    return agent().clCreateBuffer(context, flags, size, hostPtr, errcodeRet);
  return runtime().clCreateBufferWithProperties(context, properties, flags,
                                                size, hostPtr, errcodeRet);
}

void corvane::layer::leadBuffersToAgent(cl_icd_dispatch &above) {
  replace(above.clCreateBufferWithProperties, &createBuffer);
}
