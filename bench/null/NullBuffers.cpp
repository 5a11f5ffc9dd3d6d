// Buffers without contents.

#include "bench/null/NullObjects.h"
#include "bench/null/NullRuntime.h"

using namespace corvane;
using namespace corvane::bench;

static cl_mem CL_API_CALL createBuffer(cl_context, cl_mem_flags, std::size_t,
                                       void *, cl_int *status) {
  *status = CL_SUCCESS;
  return new _cl_mem;
}

static cl_int CL_API_CALL watchRelease(
    cl_mem buffer, void(CL_CALLBACK *notify)(cl_mem, void *), void *userData) {
  buffer->released = notify;
  buffer->userData = userData;
  return CL_SUCCESS;
}

static cl_int CL_API_CALL releaseBuffer(cl_mem buffer) {
  if (buffer->released)
    buffer->released(buffer, buffer->userData);
  delete buffer;
  return CL_SUCCESS;
}

void null::addBuffers(DispatchTable &table) {
  table.clCreateBuffer = createBuffer;
  table.clSetMemObjectDestructorCallback = watchRelease;
  table.clReleaseMemObject = releaseBuffer;
}
