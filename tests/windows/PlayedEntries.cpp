// The entries that opencl.dll lacks, and the one that records launches.

#include "tests/windows/PlayedEntries.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using namespace corvane;

using BufferCallback = void(CL_CALLBACK *)(cl_mem, void *);

static DispatchTable real;
static std::vector<std::thread> waiting; ///< the application has one thread
static std::multimap<cl_mem, std::pair<BufferCallback, void *>> destructors;

static cl_int CL_API_CALL setEventCallback(
    cl_event event, cl_int,
    void(CL_CALLBACK *callback)(cl_event, cl_int, void *), void *userData) {
  if (const cl_int status = real.clRetainEvent(event))
    return status;
  waiting.emplace_back([event, callback, userData] {
    const cl_int status = real.clWaitForEvents(1, &event);
    callback(event, status, userData);
    real.clReleaseEvent(event);
  });
  return CL_SUCCESS;
}

static cl_int CL_API_CALL setDestructorCallback(cl_mem buffer,
                                                BufferCallback callback,
                                                void *userData) {
  destructors.emplace(buffer, std::make_pair(callback, userData));
  return CL_SUCCESS;
}

static cl_int CL_API_CALL releaseBuffer(cl_mem buffer) {
  cl_uint references = 0;
  real.clGetMemObjectInfo(buffer, CL_MEM_REFERENCE_COUNT, sizeof references,
                          &references, nullptr);
  const cl_int status = real.clReleaseMemObject(buffer);
  if (status != CL_SUCCESS || references != 1)
    return status;
  const auto range = destructors.equal_range(buffer);
  for (auto it = range.first; it != range.second; ++it)
    it->second.first(buffer, it->second.second);
  destructors.erase(range.first, range.second);
  return CL_SUCCESS;
}

static std::string sizesText(cl_uint count, const std::size_t *sizes) {
  std::string text;
  for (cl_uint i = 0; sizes && i != count; ++i)
    text += (i ? "x" : "") + std::to_string(sizes[i]);
  return sizes ? text : "none";
}

static void record(cl_kernel kernel, const std::string &sizes) {
  const char *path = std::getenv("PLAYED_LAUNCHES");
  std::FILE *file = path ? std::fopen(path, "ab") : nullptr;
  if (!file)
    return;
  char name[256] = "";
  real.clGetKernelInfo(kernel, CL_KERNEL_FUNCTION_NAME, sizeof name, name,
                       nullptr);
  std::fprintf(file, "%s %s\n", name, sizes.c_str());
  std::fclose(file);
}

static cl_int CL_API_CALL launch(cl_command_queue queue, cl_kernel kernel,
                                 cl_uint workDim, const std::size_t *offset,
                                 const std::size_t *global,
                                 const std::size_t *local, cl_uint waitCount,
                                 const cl_event *waitList, cl_event *event) {
  record(kernel, sizesText(workDim, global) + " " + sizesText(workDim, local));
  return real.clEnqueueNDRangeKernel(queue, kernel, workDim, offset, global,
                                     local, waitCount, waitList, event);
}

void test::replaceEntries(DispatchTable &table) {
  real = table;
  table.clSetEventCallback = setEventCallback;
  table.clSetMemObjectDestructorCallback = setDestructorCallback;
  table.clReleaseMemObject = releaseBuffer;
  table.clEnqueueNDRangeKernel = launch;
}

void test::finishCallbacks() {
  for (std::thread &thread : waiting)
    thread.join();
  waiting.clear();
}
