// Creates, retains and releases the objects of the loose runtime.

#include "tests/support/loose/Entries.h"
#include "tests/support/loose/Objects.h"

using namespace corvane;
using namespace corvane::test::loose;

template <typename Handle> static cl_int CL_API_CALL retain(Handle handle) {
  objectOf(handle)->retain();
  return CL_SUCCESS;
}

template <typename Handle> static cl_int CL_API_CALL release(Handle handle) {
  objectOf(handle)->release();
  return CL_SUCCESS;
}

static void succeed(cl_int *status) {
  if (status)
    *status = CL_SUCCESS;
}

static cl_command_queue CL_API_CALL
createQueue(cl_context context, cl_device_id,
            cl_command_queue_properties properties, cl_int *status) {
  succeed(status);
  return handleOf<cl_command_queue>(new Queue(*objectOf(context), properties));
}

static cl_mem CL_API_CALL createBuffer(cl_context context, cl_mem_flags,
                                       size_t size, void *, cl_int *status) {
  succeed(status);
  return handleOf<cl_mem>(new Buffer(objectOf(context)->shared, size));
}

// Needs no lock, because only the thread that created the buffer has it yet.
static cl_int CL_API_CALL setDestructor(
    cl_mem buffer, void(CL_CALLBACK *callback)(cl_mem, void *), void *data) {
  objectOf(buffer)->destructors.emplace_back(callback, data);
  return CL_SUCCESS;
}

void corvane::test::loose::addLives(DispatchTable &table) {
  table.clCreateCommandQueue = createQueue;
  table.clCreateBuffer = createBuffer;
  table.clSetMemObjectDestructorCallback = setDestructor;
  table.clRetainContext = retain<cl_context>;
  table.clReleaseContext = release<cl_context>;
  table.clReleaseCommandQueue = release<cl_command_queue>;
  table.clRetainMemObject = retain<cl_mem>;
  table.clReleaseMemObject = release<cl_mem>;
  table.clReleaseProgram = release<cl_program>;
  table.clRetainProgram = retain<cl_program>;
  table.clRetainKernel = retain<cl_kernel>;
  table.clReleaseKernel = release<cl_kernel>;
  table.clReleaseEvent = release<cl_event>;
}
