// Loads the layer as a loader would, and lists the entries that it replaces.

#include "tests/system/LoadedLayer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <initializer_list>

#include <dlfcn.h>
#include <unistd.h>

using namespace corvane::test;

LoadedLayer::LoadedLayer(const std::string &file) {
  void *library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!library) {
    ADD_FAILURE() << dlerror();
    return;
  }
  getLayerInfo =
      reinterpret_cast<pfn_clGetLayerInfo>(dlsym(library, "clGetLayerInfo"));
  initLayer = reinterpret_cast<pfn_clInitLayer>(dlsym(library, "clInitLayer"));
}

void *LoadedLayer::Answer::entry(size_t index) const {
  void *address = nullptr;
  std::memcpy(&address,
              reinterpret_cast<const char *>(table) + index * sizeof(void *),
              sizeof(void *));
  return address;
}

LoadedLayer::Answer
LoadedLayer::init(const std::vector<void *> &loaderTable) const {
  Answer answer;
  testing::internal::CaptureStderr();
  answer.status =
      initLayer(static_cast<cl_uint>(loaderTable.size()),
                reinterpret_cast<const cl_icd_dispatch *>(loaderTable.data()),
                &answer.count, &answer.table);
  // What the agent has found is standard error to it for good; so it has to
  // stay open when the capture is over.
  EXPECT_NE(dup(STDERR_FILENO), -1);
  answer.said = testing::internal::GetCapturedStderr();
  return answer;
}

std::vector<void *> corvane::test::loaderTableOf(size_t entries) {
  std::vector<void *> table;
  for (size_t i = 0; i < entries; ++i)
    table.push_back(reinterpret_cast<void *>(size_t(0xb0000) + i));
  return table;
}

// Whether the entry lies at one of those offsets.
static bool isAt(size_t index, std::initializer_list<size_t> offsets) {
  return std::find(offsets.begin(), offsets.end(), index * sizeof(void *)) !=
         offsets.end();
}

#define AT(name) offsetof(cl_icd_dispatch, name)

bool corvane::test::isLowerHook(size_t index) {
  return isAt(index,
              {AT(clCreateKernel), AT(clCreateKernelsInProgram),
               AT(clRetainKernel), AT(clReleaseKernel), AT(clGetKernelInfo),
               AT(clBuildProgram), AT(clLinkProgram),
               AT(clEnqueueNDRangeKernel), AT(clCreateUserEvent)});
}

bool corvane::test::isUpperHook(size_t index) {
  return isAt(index, {AT(clCreateCommandQueue),
                      AT(clCreateCommandQueueWithProperties),
                      AT(clRetainCommandQueue),
                      AT(clReleaseCommandQueue),
                      AT(clGetCommandQueueInfo),
                      AT(clGetEventProfilingInfo),
                      AT(clCreateBufferWithProperties),
                      AT(clCreateProgramWithSource),
                      AT(clCreateProgramWithBinary),
                      AT(clCreateProgramWithBuiltInKernels),
                      AT(clCreateProgramWithIL),
                      AT(clRetainProgram),
                      AT(clReleaseProgram),
                      AT(clBuildProgram),
                      AT(clLinkProgram),
                      AT(clGetProgramInfo),
                      AT(clGetProgramBuildInfo),
                      AT(clCreateKernelsInProgram),
                      AT(clCreateKernel),
                      AT(clCloneKernel),
                      AT(clReleaseKernel),
                      AT(clSetKernelArgSVMPointer),
                      AT(clSetKernelExecInfo),
                      AT(clEnqueueNDRangeKernel)});
}

bool corvane::test::isForTheAgentAlone(size_t index) {
  return isAt(index, {AT(clGetKernelInfo), AT(clCreateUserEvent)});
}

#undef AT
