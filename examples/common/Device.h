// A device with a context and a queue, and the steps that all examples take on
// it.

#pragma once

#include "examples/common/Handle.h"

#include <cstddef>
#include <string>
#include <vector>

namespace examples {

/// One OpenCL device, ready to work. Every operation ends the program with a
/// message when it fails.
class Device {
public:
  /// Takes the first device of the first platform that has any.
  Device();

  const std::string &name() const { return deviceName; }
  cl_command_queue queue() const { return commandQueue.get(); }

  /// Builds a program; a build that fails shows the compiler's log.
  Program build(const char *source) const;

  /// A buffer that holds a copy of \p values.
  template <typename Value>
  Buffer bufferOf(const std::vector<Value> &values) const {
    return makeBuffer(CL_MEM_READ_WRITE | CL_MEM_COPY_HOST_PTR,
                      values.size() * sizeof(Value),
                      const_cast<Value *>(values.data()));
  }

  /// A buffer for \p count values, which are not set.
  template <typename Value> Buffer emptyBuffer(size_t count) const {
    return makeBuffer(CL_MEM_READ_WRITE, count * sizeof(Value), nullptr);
  }

  /// Waits for the queue and copies \p count values out of \p buffer.
  template <typename Value>
  std::vector<Value> read(const Buffer &buffer, size_t count) const {
    std::vector<Value> values(count);
    readBytes(buffer.get(), count * sizeof(Value), values.data());
    return values;
  }

private:
  Buffer makeBuffer(cl_mem_flags flags, size_t size, void *hostData) const;
  void readBytes(cl_mem buffer, size_t size, void *hostData) const;

  cl_device_id device = nullptr;
  std::string deviceName;
  Context context;
  Queue commandQueue;
};

/// A kernel of a program that was built.
Kernel createKernel(const Program &program, const char *name);

/// Sets the arguments of \p kernel from the first on.
template <typename... Values>
void setArguments(const Kernel &kernel, const Values &...values);

/// An argument in local memory, by its size in bytes.
struct LocalMemory {
  size_t size;
};

void setArgument(cl_kernel kernel, cl_uint index, const Buffer &buffer);
void setArgument(cl_kernel kernel, cl_uint index, LocalMemory memory);
void setArgument(cl_kernel kernel, cl_uint index, cl_int value);

template <typename... Values>
void setArguments(const Kernel &kernel, const Values &...values) {
  cl_uint index = 0;
  (setArgument(kernel.get(), index++, values), ...);
}

} // namespace examples
