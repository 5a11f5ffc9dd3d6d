// OpenCL objects that are released when their owner is destroyed.

#pragma once

#include <CL/cl.h>

#include <memory>
#include <type_traits>

namespace examples {

template <typename Object, cl_int(CL_API_CALL *release)(Object)>
struct Releaser {
  void operator()(Object object) const { release(object); }
};

template <typename Object, cl_int(CL_API_CALL *release)(Object)>
using Handle =
    std::unique_ptr<std::remove_pointer_t<Object>, Releaser<Object, release>>;

using Context = Handle<cl_context, clReleaseContext>;
using Queue = Handle<cl_command_queue, clReleaseCommandQueue>;
using Program = Handle<cl_program, clReleaseProgram>;
using Kernel = Handle<cl_kernel, clReleaseKernel>;
using Buffer = Handle<cl_mem, clReleaseMemObject>;

} // namespace examples
