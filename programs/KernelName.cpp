// Reads kernel names from the runtime.

#include "programs/KernelName.h"

#include "agent/Owned.h"
#include "agent/RuntimeTable.h"
#include "variants/VariantName.h"

#include <array>

using namespace corvane;

// Room for a name and its terminating zero in the usual query.
static constexpr std::size_t usualRoom = 1024;

// No compiler makes longer names; a runtime that claims one is wrong.
static constexpr std::size_t mostRoom = std::size_t{1} << 20;

static std::string readLongName(cl_kernel kernel) {
  std::size_t size = 0;
  const cl_int status = runtime().clGetKernelInfo(
      kernel, CL_KERNEL_FUNCTION_NAME, 0, nullptr, &size);
  if (status != CL_SUCCESS || size <= usualRoom || size > mostRoom)
    return {};

  const auto text = allocateZeroed<char>(size + 1);
  if (!text || runtime().clGetKernelInfo(kernel, CL_KERNEL_FUNCTION_NAME, size,
                                         text.get(), nullptr) != CL_SUCCESS)
    return {};
  return text.get();
}

std::string corvane::readKernelName(cl_kernel kernel) {
  std::array<char, usualRoom + 1> text{};
  const cl_int status = runtime().clGetKernelInfo(
      kernel, CL_KERNEL_FUNCTION_NAME, usualRoom, text.data(), nullptr);
  if (status == CL_INVALID_VALUE && text.front() == '\0')
    return readLongName(kernel);
  return text.data();
}

std::unique_ptr<llvm::TransformedKernelAgent>
corvane::variantOf(const std::string &kernelName) {
  if (kernelName.size() >= usualRoom)
    return nullptr;
  return parseVariantName(kernelName);
}
