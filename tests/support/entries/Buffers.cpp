// Buffers of the scripted runtime: they have real bytes.

#include "tests/support/entries/Entries.h"

#include "tests/support/Words.h"
#include "tests/support/World.h"

#include <algorithm>

using namespace corvane::test;

// A larger buffer has a size but no bytes, and cannot be copied or computed on.
static constexpr std::size_t mostBytes = std::size_t{1} << 28;

static std::shared_ptr<Buffer> makeBuffer(cl_mem_flags flags, std::size_t size,
                                          const void *hostPtr) {
  auto buffer = std::make_shared<Buffer>();
  buffer->size = size;
  buffer->flags = flags;
  if (size <= mostBytes)
    buffer->bytes.resize(size);
  if (hostPtr)
    std::memcpy(buffer->bytes.data(), hostPtr, buffer->bytes.size());
  return buffer;
}

cl_mem CL_API_CALL fake::clCreateBuffer(cl_context context, cl_mem_flags flags,
                                        size_t size, void *hostPtr,
                                        cl_int *status) {
  World &world = World::current("clCreateBuffer");
  if (const auto failure =
          world.begin("clCreateBuffer",
                      {world.say(context), std::to_string(flags),
                       std::to_string(size), place(hostPtr), place(status)})) {
    setStatus(status, *failure);
    return nullptr;
  }
  std::lock_guard<std::recursive_mutex> guard(world.lock);
  const cl_int result = !world.objects.find(context) ? CL_INVALID_CONTEXT
                        : size == 0                  ? CL_INVALID_BUFFER_SIZE
                                                     : CL_SUCCESS;
  setStatus(status, result);
  if (result != CL_SUCCESS)
    return nullptr;
  return world.objects.add<cl_mem>(makeBuffer(flags, size, hostPtr));
}

cl_int CL_API_CALL fake::clRetainMemObject(cl_mem buffer) {
  return World::current("clRetainMemObject")
      .retain("clRetainMemObject", buffer, CL_INVALID_MEM_OBJECT);
}

cl_int CL_API_CALL fake::clReleaseMemObject(cl_mem buffer) {
  return World::current("clReleaseMemObject")
      .release("clReleaseMemObject", buffer, CL_INVALID_MEM_OBJECT);
}

cl_int CL_API_CALL fake::clSetMemObjectDestructorCallback(
    cl_mem handle, void(CL_CALLBACK *destructor)(cl_mem, void *),
    void *userData) {
  World &world = World::current("clSetMemObjectDestructorCallback");
  if (const auto failure =
          world.begin("clSetMemObjectDestructorCallback",
                      {world.say(handle), place(destructor), place(userData)}))
    return *failure;
  std::lock_guard<std::recursive_mutex> guard(world.lock);
  const auto buffer = world.objects.find(handle);
  if (!buffer)
    return CL_INVALID_MEM_OBJECT;
  if (!destructor)
    return CL_INVALID_VALUE;
  buffer->destructors.emplace_back([=] { destructor(handle, userData); });
  return CL_SUCCESS;
}
