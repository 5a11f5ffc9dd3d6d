// Launches a kernel several times over each of two sizes, with fresh buffers,
// and prints what it wrote. It knows nothing of the agent.
//
//   launches KERNEL [OPTIONS [LAST]]
//
// OPTIONS are for the build. LAST is what it does at the end: "kill",
// "interrupt" (it ends by that signal) or "leave" (it launches once more and
// exits at once).

#include "tests/system/autotune/hosts/Host.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace hosts;

extern const char tuneKernels[];

namespace {
/// A program of these kernels, built with options.
struct Built {
  Session session;
  Queue queue = session.queue();
  Program program;
  Kernel kernel;

  Built(const char *name, const char *options) {
    const char *text = tuneKernels;
    cl_int status = CL_SUCCESS;
    program.reset(clCreateProgramWithSource(session.context(), 1, &text,
                                            nullptr, &status));
    check(status, "clCreateProgramWithSource");
    check(clBuildProgram(program.get(), 0, nullptr, options, nullptr, nullptr),
          "clBuildProgram");
    kernel.reset(clCreateKernel(program.get(), name, &status));
    check(status, "clCreateKernel");
  }
};
} // namespace

static void launchOnce(Built &built, bool isRacing, size_t size) {
  const Buffer y = built.session.bufferOf(Values(size, 0));
  const Buffer x =
      built.session.bufferOf(isRacing ? Values(size, 0) : someValues(size, 7));
  setArgument(built.kernel.get(), 0, y.get());
  setArgument(built.kernel.get(), 1, x.get());
  setArgument(built.kernel.get(), 2, cl_uint{2000});
  launch(built.queue.get(), built.kernel, size, 64);
  const Values values = read(built.queue.get(), y.get(), size);
  print("y",
        isRacing ? Values(1, static_cast<cl_uint>(values.size())) : values);
}

int main(int argumentCount, char **arguments) {
  examples::setProgramName("launches");
  const std::string name = argumentCount > 1 ? arguments[1] : "good";
  const std::string last = argumentCount > 3 ? arguments[3] : "";
  Built built(name.c_str(), argumentCount > 2 ? arguments[2] : "");
  for (int round = 0; round != 3; ++round)
    for (const size_t size : {size_t{1024}, size_t{2048}})
      launchOnce(built, name == "racing", size);
  std::fflush(stdout);
  if (last == "kill")
    std::raise(SIGKILL);
  if (last == "interrupt")
    std::raise(SIGINT);
  if (last == "leave") {
    const Buffer y = built.session.bufferOf(Values(4096, 0));
    const Buffer x = built.session.bufferOf(someValues(4096, 7));
    setArgument(built.kernel.get(), 0, y.get());
    setArgument(built.kernel.get(), 1, x.get());
    launch(built.queue.get(), built.kernel, 4096, 64);
    check(clFlush(built.queue.get()), "clFlush");
    std::exit(0);
  }
  return 0;
}
