// Kernel arguments of the scripted runtime: remembered until a launch.

#include "tests/support/entries/Entries.h"

#include "tests/support/Words.h"
#include "tests/support/World.h"

using namespace corvane::test;

using Lock = std::lock_guard<std::recursive_mutex>;

// "buffer 1" for a value that is a buffer's handle, else its bytes.
static std::string valueInWords(World &world, std::size_t size,
                                const void *value) {
  cl_mem handle = nullptr;
  if (!value || size != sizeof handle)
    return bytesInWords(size, value);
  std::memcpy(&handle, value, sizeof handle);
  const std::string name = world.say(handle);
  return name == "buffer ?" || name == "null" ? bytesInWords(size, value)
                                              : name;
}

static Argument makeArgument(std::size_t size, const void *value) {
  Argument argument;
  argument.size = size;
  argument.hasValue = value != nullptr;
  if (const auto *bytes = static_cast<const unsigned char *>(value))
    argument.value.assign(bytes, bytes + size);
  return argument;
}

cl_int CL_API_CALL fake::clSetKernelArg(cl_kernel handle, cl_uint index,
                                        size_t size, const void *value) {
  World &world = World::current("clSetKernelArg");
  if (const auto failure =
          world.begin("clSetKernelArg",
                      {world.say(handle), std::to_string(index),
                       std::to_string(size), valueInWords(world, size, value)}))
    return *failure;
  Lock guard(world.lock);
  const auto kernel = world.objects.find(handle);
  if (!kernel)
    return CL_INVALID_KERNEL;
  if (index >= kernel->arguments.size())
    return CL_INVALID_ARG_INDEX;
  if (size == 0)
    return CL_INVALID_ARG_SIZE;
  kernel->arguments[index] = makeArgument(size, value);
  return CL_SUCCESS;
}

static cl_int tell(const Declaration &declaration, cl_kernel_arg_info what,
                   fake::Wanted wanted) {
  switch (what) {
  case CL_KERNEL_ARG_ADDRESS_QUALIFIER:
    return answerValue(wanted, declaration.space);
  case CL_KERNEL_ARG_ACCESS_QUALIFIER:
    return answerValue(wanted, declaration.access);
  case CL_KERNEL_ARG_TYPE_QUALIFIER:
    return answerValue(wanted, declaration.type);
  case CL_KERNEL_ARG_TYPE_NAME:
    return answer(wanted, declaration.typeName);
  default:
    return CL_INVALID_VALUE;
  }
}

cl_int CL_API_CALL fake::clGetKernelArgInfo(cl_kernel handle, cl_uint index,
                                            cl_kernel_arg_info what,
                                            size_t capacity, void *value,
                                            size_t *size) {
  World &world = World::current("clGetKernelArgInfo");
  if (const auto failure = world.begin(
          "clGetKernelArgInfo",
          {world.say(handle), std::to_string(index), argumentInfoName(what),
           std::to_string(capacity), place(value), place(size)}))
    return *failure;
  Lock guard(world.lock);
  const auto kernel = world.objects.find(handle);
  if (!kernel)
    return CL_INVALID_KERNEL;
  if (index >= kernel->arguments.size())
    return CL_INVALID_ARG_INDEX;
  const auto &declarations = kernel->script.declarations;
  const auto declaration = declarations.find(index);
  return declaration == declarations.end()
             ? CL_KERNEL_ARG_INFO_NOT_AVAILABLE
             : tell(declaration->second, what, {capacity, value, size});
}
