// Makes the OpenCL calls for a device, and ends the example when one fails.

#include "examples/common/Device.h"
#include "examples/common/Failure.h"

using namespace examples;

static std::vector<cl_platform_id> allPlatforms() {
  cl_uint count = 0;
  // A loader without any platform answers an error, and so the count stays 0.
  clGetPlatformIDs(0, nullptr, &count);
  if (count == 0)
    fail("there is no OpenCL platform; install one, for instance on Debian "
         "with: apt-get install pocl-opencl-icd");
  std::vector<cl_platform_id> platforms(count);
  check(clGetPlatformIDs(count, platforms.data(), nullptr), "clGetPlatformIDs");
  return platforms;
}

static cl_device_id firstDevice() {
  for (cl_platform_id platform : allPlatforms()) {
    cl_device_id device = nullptr;
    if (clGetDeviceIDs(platform, CL_DEVICE_TYPE_ALL, 1, &device, nullptr) ==
        CL_SUCCESS)
      return device;
  }
  fail("there is an OpenCL platform, but no device of it can be used");
}

static std::string nameOf(cl_device_id device) {
  char name[256] = "";
  check(clGetDeviceInfo(device, CL_DEVICE_NAME, sizeof(name), name, nullptr),
        "clGetDeviceInfo");
  return name;
}

Device::Device() : device(firstDevice()), deviceName(nameOf(device)) {
  cl_int status = CL_SUCCESS;
  context.reset(
      clCreateContext(nullptr, 1, &device, nullptr, nullptr, &status));
  check(status, "clCreateContext");
  commandQueue.reset(clCreateCommandQueue(context.get(), device, 0, &status));
  check(status, "clCreateCommandQueue");
}

static std::string buildLog(cl_program program, cl_device_id device) {
  size_t size = 0;
  clGetProgramBuildInfo(program, device, CL_PROGRAM_BUILD_LOG, 0, nullptr,
                        &size);
  std::string log(size, '\0');
  clGetProgramBuildInfo(program, device, CL_PROGRAM_BUILD_LOG, size, log.data(),
                        nullptr);
  return log.substr(0, log.find('\0'));
}

Program Device::build(const char *source) const {
  cl_int status = CL_SUCCESS;
  Program program(
      clCreateProgramWithSource(context.get(), 1, &source, nullptr, &status));
  check(status, "clCreateProgramWithSource");
  if (clBuildProgram(program.get(), 1, &device, "", nullptr, nullptr) !=
      CL_SUCCESS)
    fail("the program does not build:\n" + buildLog(program.get(), device));
  return program;
}

Buffer Device::makeBuffer(cl_mem_flags flags, size_t size,
                          void *hostData) const {
  cl_int status = CL_SUCCESS;
  Buffer buffer(clCreateBuffer(context.get(), flags, size, hostData, &status));
  check(status, "clCreateBuffer");
  return buffer;
}

void Device::readBytes(cl_mem buffer, size_t size, void *hostData) const {
  check(clEnqueueReadBuffer(queue(), buffer, CL_TRUE, 0, size, hostData, 0,
                            nullptr, nullptr),
        "clEnqueueReadBuffer");
}

Kernel examples::createKernel(const Program &program, const char *name) {
  cl_int status = CL_SUCCESS;
  Kernel kernel(clCreateKernel(program.get(), name, &status));
  check(status, "clCreateKernel");
  return kernel;
}

void examples::setArgument(cl_kernel kernel, cl_uint index,
                           const Buffer &buffer) {
  cl_mem handle = buffer.get();
  check(clSetKernelArg(kernel, index, sizeof(cl_mem), &handle),
        "clSetKernelArg");
}

void examples::setArgument(cl_kernel kernel, cl_uint index,
                           LocalMemory memory) {
  check(clSetKernelArg(kernel, index, memory.size, nullptr), "clSetKernelArg");
}

void examples::setArgument(cl_kernel kernel, cl_uint index, cl_int value) {
  check(clSetKernelArg(kernel, index, sizeof(value), &value), "clSetKernelArg");
}
