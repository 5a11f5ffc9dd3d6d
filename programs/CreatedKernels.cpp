// Creates and releases kernels through the runtime, and reads their names.

#include "programs/CreatedKernels.h"

#include "agent/RuntimeTable.h"
#include "variants/VariantName.h"

#include <algorithm>
#include <array>
#include <new>

using namespace corvane;

CreatedKernels::~CreatedKernels() {
  while (!empty())
    releaseFront();
}

cl_int CreatedKernels::createUpTo(cl_uint most, cl_program program) {
  if (most != 0) {
    kernels = allocateZeroed<cl_kernel>(most);
    if (!kernels)
      throw std::bad_alloc();
  }
  cl_uint created = 0;
  const cl_int status = runtime().clCreateKernelsInProgram(
      program, most, kernels.get(), &created);
  if (status == CL_SUCCESS)
    count = std::min(created, most);
  return status;
}

cl_int CreatedKernels::releaseFront() {
  return runtime().clReleaseKernel(takeFront());
}

// Bytes for a name and its terminating zero in the usual query.
static constexpr std::size_t usualNameSize = 1024;

// No compiler makes longer names; a runtime that claims one is wrong.
static constexpr std::size_t mostNameSize = std::size_t{1} << 20;

static std::string readLongName(cl_kernel kernel) {
  std::size_t size = 0;
  const cl_int status = runtime().clGetKernelInfo(
      kernel, CL_KERNEL_FUNCTION_NAME, 0, nullptr, &size);
  if (status != CL_SUCCESS || size <= usualNameSize || size > mostNameSize)
    return {};

  const auto text = allocateZeroed<char>(size + 1);
  if (!text || runtime().clGetKernelInfo(kernel, CL_KERNEL_FUNCTION_NAME, size,
                                         text.get(), nullptr) != CL_SUCCESS)
    return {};
  return text.get();
}

std::string corvane::readKernelName(cl_kernel kernel) {
  std::array<char, usualNameSize + 1> text{};
  const cl_int status = runtime().clGetKernelInfo(
      kernel, CL_KERNEL_FUNCTION_NAME, usualNameSize, text.data(), nullptr);
  if (status == CL_INVALID_VALUE && text.front() == '\0')
    return readLongName(kernel);
  return text.data();
}

std::unique_ptr<llvm::TransformedKernelAgent>
corvane::variantOf(const std::string &kernelName) {
  if (kernelName.size() >= usualNameSize)
    return nullptr;
  return parseVariantName(kernelName);
}
