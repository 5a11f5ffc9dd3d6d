// Asks for notifications of builds or, as the second argument says, of links.

#include "tests/system/layer/hosts/Program.h"

#include <cstdio>

using namespace hosts;

namespace {
/// What a notification found, and whose it was.
struct Heard {
  const Session &session;
  unsigned times = 0;
  cl_program program = nullptr;
  Kernel kernel = {}; ///< created while notified
};
} // namespace

static void CL_CALLBACK listen(cl_program program, void *userData) {
  Heard &heard = *static_cast<Heard *>(userData);
  ++heard.times;
  heard.program = program;
  if (!program) {
    std::printf("  heard of none\n");
    return;
  }
  cl_build_status state = 77;
  cl_int status = clGetProgramBuildInfo(program, heard.session.device(),
                                        CL_PROGRAM_BUILD_STATUS, sizeof state,
                                        &state, nullptr);
  std::printf("  heard: %d state %d references %u", status, state,
              referencesTo(program));
  cl_uint count = 77;
  status = clCreateKernelsInProgram(program, 0, nullptr, &count);
  std::printf(" kernels %d %u", status, count);
  heard.kernel.reset(clCreateKernel(program, "accumulate", &status));
  std::printf(" kernel %d\n", status);
}

static void CL_CALLBACK count(cl_program, void *userData) {
  if (userData)
    ++*static_cast<unsigned *>(userData);
  else
    std::printf("  called without data\n");
}

static void tell(const char *what, Heard &heard, cl_program program,
                 cl_int status) {
  std::printf("%s: %d heard %u of it %d\n", what, status, heard.times,
              program && heard.program == program);
  if (heard.kernel)
    runAccumulate(heard.session, heard.kernel.get(), 64);
  heard.kernel.reset();
}

static void buildNotified(const Session &session, const Program &program,
                          const char *what, const char *options) {
  Heard heard{session};
  cl_device_id device = session.device();
  const cl_int status =
      clBuildProgram(program.get(), 1, &device,
                     (commonOptions + " " + options).c_str(), listen, &heard);
  tell(what, heard, program.get(), status);
}

static Program linkNotified(const Session &session, const Program &input,
                            const char *what, const char *options) {
  Heard heard{session};
  cl_device_id device = session.device();
  cl_program object = input.get();
  cl_int status = 77;
  Program program(clLinkProgram(session.context(), 1, &device, options, 1,
                                &object, listen, &heard, &status));
  tell(what, heard, program.get(), status);
  return program;
}

static void buildOddly(const Session &session) {
  const Program program = sourceProgram(session);
  cl_device_id device = session.device();
  const char *options = commonOptions.c_str();
  unsigned data = 0;
  std::printf(
      "data without a function: %d",
      clBuildProgram(program.get(), 1, &device, options, nullptr, &data));
  std::printf(" no program: %d",
              clBuildProgram(nullptr, 1, &device, options, count, &data));
  std::printf(" calls %u\n", data);
  std::printf("without data: %d\n", clBuildProgram(program.get(), 1, &device,
                                                   options, count, nullptr));
}

static void linkOddly(const Session &session) {
  const Program input = compiledProgram(session);
  cl_program object = input.get();
  cl_device_id device = session.device();
  unsigned data = 0;
  cl_int status = 77;
  Program program(clLinkProgram(session.context(), 1, &device, "", 1, &object,
                                nullptr, &data, &status));
  std::printf("data without a function: %d %d", program != nullptr, status);
  program.reset(clLinkProgram(nullptr, 1, &device, "", 1, &object, count, &data,
                              &status));
  std::printf(" no context: %d %d calls %u\n", program != nullptr, status,
              data);
  program.reset(clLinkProgram(session.context(), 1, &device, "", 1, &object,
                              count, nullptr, nullptr));
  std::printf("without data: %d\n", program != nullptr);
}

static void buildAll(const Session &session) {
  const Program program = sourceProgram(session);
  buildNotified(session, program, "build", "");
  buildNotified(session, program, "again", "-DMORE_KERNELS");
  buildNotified(session, program, "faulty", "-DFAULTY");
  buildNotified(session, program, "mended", "");
  buildOddly(session);
}

static void linkAll(const Session &session) {
  linkNotified(session, compiledProgram(session), "link", "");
  linkNotified(session, compiledProgram(session, "-DUNRESOLVED"), "unresolved",
               "");
  linkNotified(session, compiledProgram(session), "options", "-no-such-option");
  linkNotified(session, sourceProgram(session), "not compiled", "");
  linkOddly(session);
}

int main(int argumentCount, char **arguments) {
  examples::setProgramName("notifications");
  readOptions(argumentCount, arguments);
  const Session session(commonOptions.c_str());
  if (argumentCount > 2 && std::string(arguments[2]) == "linked")
    linkAll(session);
  else
    buildAll(session);
  return 0;
}
