// A program over OpenCL's own C++ bindings.

#define CL_HPP_TARGET_OPENCL_VERSION 300
#define CL_HPP_MINIMUM_OPENCL_VERSION 200
#include "tests/system/autotune/hosts/Host.h"

#include <CL/opencl.hpp>

using namespace hosts;

extern const char kernelsSource[];

static constexpr size_t count = 1024;

static void work(const cl::Context &context, const cl::Program &program,
                 cl::CommandQueue queue, size_t local) {
  cl::Buffer y(context, CL_MEM_READ_WRITE, count * sizeof(cl_uint));
  cl::Buffer x(context, CL_MEM_READ_ONLY, count * sizeof(cl_uint));
  Values values = someValues(count, 1);
  const Values added = someValues(count, 2);
  check(cl::copy(queue, values.begin(), values.end(), y), "cl::copy");
  check(cl::copy(queue, added.begin(), added.end(), x), "cl::copy");

  cl::KernelFunctor<cl::Buffer, cl::Buffer, cl_uint> accumulate(program,
                                                                "accumulate");
  cl::Event last;
  for (cl_uint factor = 3; factor < 7; ++factor) {
    std::vector<cl::Event> waits(last() ? 1 : 0, last);
    last = accumulate(
        cl::EnqueueArgs(queue, waits, cl::NDRange(count), cl::NDRange(local)),
        y, x, factor);
  }
  check(last.wait(), "cl::Event::wait");
  check(cl::copy(queue, y, values.begin(), values.end()), "cl::copy");
  print("y", values);
  finish(queue());
}

int main() {
  examples::setProgramName("bindings");
  const cl::Context context(CL_DEVICE_TYPE_ALL);
  const cl::Program program(context, kernelsSource);
  check(program.build(), "cl::Program::build");
  work(context, program, cl::CommandQueue(context), 64);
  work(context, program,
       cl::CommandQueue(context, cl::QueueProperties::OutOfOrder), 32);
  return 0;
}
