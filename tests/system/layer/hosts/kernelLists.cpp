// Asks programs in every state for their kernels, and has all of them created.
// The second argument says how they come to be: built or linked.

#include "tests/system/layer/hosts/Program.h"

#include <algorithm>
#include <cstdio>

using namespace hosts;

static void ask(cl_program program, cl_program_info what, const char *name) {
  size_t length = 77;
  const cl_int status = clGetProgramInfo(program, what, 0, nullptr, &length);
  std::printf("  %s: %d length %zu", name, status, length);
  if (status == CL_SUCCESS) {
    std::vector<char> answer(length + 1, '#');
    std::printf(" alone %d",
                clGetProgramInfo(program, what, 0, nullptr, nullptr));
    std::printf(" small %d", clGetProgramInfo(program, what, length - 1,
                                              answer.data(), nullptr));
    std::printf(" %c", answer[0]);
    std::printf(" full %d", clGetProgramInfo(program, what, length + 1,
                                             answer.data(), &length));
    // A runtime may leave the terminating zero of no names out.
    if (what == CL_PROGRAM_KERNEL_NAMES)
      std::printf(" '%.*s'", static_cast<int>(length - 1), answer.data());
    else
      std::printf(" %d", answer[0]);
    std::printf(" %c", answer[length]);
  }
  std::printf("\n");
}

// Offers an array of that many elements, which is longer in truth.
static void create(cl_program program, cl_uint room) {
  cl_kernel none = reinterpret_cast<cl_kernel>(size_t{0x77});
  std::vector<cl_kernel> kernels(1100, none);
  cl_uint count = 77;
  const cl_int status =
      clCreateKernelsInProgram(program, room, kernels.data(), &count);
  std::printf("  room %u: %d count %u:", room, status, count);
  for (cl_uint i = 0; status == CL_SUCCESS && i < count; ++i) {
    std::printf(" %s", nameOf(kernels[i]).c_str());
    check(clReleaseKernel(kernels[i]), "clReleaseKernel");
  }
  const auto pastEnd = kernels.begin() + (status == CL_SUCCESS ? room : 0);
  std::printf(" past the end %td\n",
              std::count_if(pastEnd, kernels.end(),
                            [&](cl_kernel kernel) { return kernel != none; }));
}

static void tell(const char *state, cl_program program) {
  std::printf("%s\n", state);
  ask(program, CL_PROGRAM_NUM_KERNELS, "number");
  ask(program, CL_PROGRAM_KERNEL_NAMES, "names");

  const cl_uint before = referencesTo(program);
  cl_uint count = 77;
  cl_int status = clCreateKernelsInProgram(program, 0, nullptr, &count);
  std::printf("  count: %d %u", status, count);
  std::printf(" alone %d",
              clCreateKernelsInProgram(program, 0, nullptr, nullptr));
  std::printf(" references %u %u\n", before, referencesTo(program));

  if (status != CL_SUCCESS)
    count = 1;
  for (const cl_uint room : {1024u, count, count / 2, 0u})
    create(program, room);
  std::printf("  references %u\n", referencesTo(program));
}

static void runAll(const Session &session, cl_program program) {
  cl_kernel kernels[16] = {};
  cl_uint count = 0;
  check(clCreateKernelsInProgram(program, 16, kernels, &count),
        "clCreateKernelsInProgram");
  for (cl_uint i = 0; i < count; ++i) {
    const Kernel kernel(kernels[i]);
    if (nameOf(kernel.get()) == "accumulate")
      runAccumulate(session, kernel.get(), 64);
    if (nameOf(kernel.get()) == "negate")
      runNegate(session, kernel.get());
  }
}

// Kernels that live keep a program from being built again.
static void buildWithKernels(const Session &session, const Program &program) {
  cl_int status = CL_SUCCESS;
  {
    const Kernel kernel(clCreateKernel(program.get(), "negate", &status));
    status = build(session, program, "-DOTHER");
    std::printf("kernels live: %d\n", status);
    tell("not built again", program.get());
  }
  std::printf("kernels are gone: %d\n", build(session, program));
}

static void linked(const Session &session) {
  const Program compiled = compiledProgram(session);
  tell("compiled", compiled.get());
  cl_device_id device = session.device();
  cl_program input = compiled.get();
  cl_int status = CL_SUCCESS;
  const Program program(clLinkProgram(session.context(), 1, &device, "", 1,
                                      &input, nullptr, nullptr, &status));
  check(status, "clLinkProgram");
  tell("linked", program.get());
  runAll(session, program.get());
}

static void built(const Session &session) {
  const Program program = sourceProgram(session);
  tell("not built", program.get());
  check(build(session, program), "clBuildProgram");
  tell("built", program.get());
  runAll(session, program.get());
  check(build(session, program, "-DMORE_KERNELS"), "clBuildProgram");
  tell("built with more", program.get());
  runAll(session, program.get());
  check(build(session, program), "clBuildProgram");
  tell("built with less", program.get());
  buildWithKernels(session, program);
  std::printf("faulty: %d\n", build(session, program, "-DFAULTY"));
  tell("failed", program.get());
  check(build(session, program), "clBuildProgram");
  tell("mended", program.get());
  runAll(session, program.get());
  std::printf(
      "none: %d %d\n",
      clGetProgramInfo(nullptr, CL_PROGRAM_NUM_KERNELS, 0, nullptr, nullptr),
      clCreateKernelsInProgram(nullptr, 0, nullptr, nullptr));
}

int main(int argumentCount, char **arguments) {
  examples::setProgramName("kernelLists");
  readOptions(argumentCount, arguments);
  const Session session(commonOptions.c_str());
  if (argumentCount > 2 && std::string(arguments[2]) == "linked")
    linked(session);
  else
    built(session);
  return 0;
}
