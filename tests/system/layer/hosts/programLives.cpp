// Retains and releases programs in every order, again and again, as C++
// wrappers do; new programs get the handles of old ones.

#include "tests/system/layer/hosts/Program.h"

#include <cstdio>

using namespace hosts;

static Kernel make(cl_program program, const char *name) {
  cl_int status = CL_SUCCESS;
  Kernel kernel(clCreateKernel(program, name, &status));
  check(status, "clCreateKernel");
  return kernel;
}

// Releases the first of two references before a kernel is created.
static void keepRetained(const Session &session) {
  Program program = sourceProgram(session);
  check(build(session, program), "clBuildProgram");
  check(clRetainProgram(program.get()), "clRetainProgram");
  const Program second(program.get());
  program.reset();
  runAccumulate(session, make(second.get(), "accumulate").get(), 64);
}

// Releases the program before its kernel.
static void keepKernel(const Session &session) {
  Program program = sourceProgram(session);
  check(build(session, program), "clBuildProgram");
  const Kernel kernel = make(program.get(), "accumulate");
  program.reset();
  runAccumulate(session, kernel.get(), 32);
}

// Makes programs of two kinds in turn, which may get the same handle; only
// those of one kind have variants.
static void takeTurns(const Session &session) {
  for (int round = 0; round < 6; ++round) {
    const Program program = sourceProgram(session);
    const bool plain = round % 2 == 0;
    check(build(session, program, plain ? "-DWITHOUT_VARIANTS" : ""),
          "clBuildProgram");
    // Builds some programs twice; they are released once.
    if (round >= 4)
      check(build(session, program, plain ? "-DWITHOUT_VARIANTS" : ""),
            "clBuildProgram");
    const Kernel kernel = make(program.get(), "accumulate");
    runAccumulate(session, kernel.get(), plain ? 16 : 8);
  }
}

// The same with linked programs.
static void link(const Session &session) {
  for (int round = 0; round < 4; ++round) {
    const bool plain = round % 2 == 0;
    const Program input =
        compiledProgram(session, plain ? "-DWITHOUT_VARIANTS" : "");
    cl_program object = input.get();
    cl_device_id device = session.device();
    cl_int status = CL_SUCCESS;
    const Program program(clLinkProgram(session.context(), 1, &device, "", 1,
                                        &object, nullptr, nullptr, &status));
    check(status, "clLinkProgram");
    check(clRetainProgram(program.get()), "clRetainProgram");
    check(clReleaseProgram(program.get()), "clReleaseProgram");
    runAccumulate(session, make(program.get(), "accumulate").get(),
                  plain ? 128 : 256);
  }
}

// A program's kernels are those of its last build.
static void buildAgain(const Session &session) {
  const Program program = sourceProgram(session);
  check(build(session, program), "clBuildProgram");
  check(build(session, program), "clBuildProgram");
  runAccumulate(session, make(program.get(), "accumulate").get(), 4);
  check(build(session, program, "-DWITHOUT_VARIANTS"), "clBuildProgram");
  runAccumulate(session, make(program.get(), "accumulate").get(), 2);
}

int main(int argumentCount, char **arguments) {
  examples::setProgramName("programLives");
  readOptions(argumentCount, arguments);
  const Session session(commonOptions.c_str());
  keepRetained(session);
  keepKernel(session);
  takeTurns(session);
  link(session);
  buildAgain(session);
  std::printf("none: %d %d\n", clRetainProgram(nullptr),
              clReleaseProgram(nullptr));
  return 0;
}
