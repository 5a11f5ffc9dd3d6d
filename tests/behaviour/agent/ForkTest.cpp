// Tests of processes that are forked from the application's while another of
// its threads launches.

#include "agent/Environment.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/LeakCheck.h"
#include "tests/support/TempFolder.h"
#include "tests/support/loose/Runtime.h"

#include "gtest/gtest.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;

namespace {
/// An application with kernels on a runtime that has no locks of its own.
class Application {
public:
  explicit Application(loose::Runtime &loaded) : runtime(loaded) {
    const char *source = "main";
    program = cl().clCreateProgramWithSource(runtime.context(), 1, &source,
                                             nullptr, nullptr);
    build();
    queue = cl().clCreateCommandQueue(runtime.context(), nullptr, 0, nullptr);
    buffer = cl().clCreateBuffer(runtime.context(), CL_MEM_READ_WRITE, 64,
                                 nullptr, nullptr);
    kernel = cl().clCreateKernel(program, "sum", nullptr);
  }

  /// What each forked child does: every kind of call that takes a lock.
  bool callsSucceed() {
    std::size_t count = 0;
    cl_mem another = cl().clCreateBuffer(runtime.context(), CL_MEM_READ_WRITE,
                                         64, nullptr, nullptr);
    cl_kernel second = cl().clCreateKernel(program, "sum", nullptr);
    return build() == CL_SUCCESS && launch() == CL_SUCCESS &&
           cl().clGetProgramInfo(program, CL_PROGRAM_NUM_KERNELS, sizeof count,
                                 &count, nullptr) == CL_SUCCESS &&
           cl().clReleaseMemObject(another) == CL_SUCCESS &&
           cl().clReleaseMemObject(buffer) == CL_SUCCESS &&
           cl().clReleaseKernel(second) == CL_SUCCESS &&
           cl().clReleaseProgram(program) == CL_SUCCESS &&
           cl().clReleaseContext(runtime.context()) == CL_SUCCESS;
  }

  cl_int build() {
    return cl().clBuildProgram(program, 0, nullptr, nullptr, nullptr, nullptr);
  }
  cl_int launch() {
    const cl_uint number = 5;
    const std::size_t global = 64;
    (void)cl().clSetKernelArg(kernel, 0, sizeof buffer, &buffer);
    (void)cl().clSetKernelArg(kernel, 1, sizeof number, &number);
    return cl().clEnqueueNDRangeKernel(queue, kernel, 1, nullptr, &global,
                                       nullptr, 0, nullptr, nullptr);
  }
  void takeAndDropBuffer() {
    cl().clReleaseMemObject(cl().clCreateBuffer(
        runtime.context(), CL_MEM_READ_WRITE, 8, nullptr, nullptr));
  }

private:
  const DispatchTable &cl() const { return runtime.cl(); }

  loose::Runtime &runtime;
  cl_program program = nullptr;
  cl_command_queue queue = nullptr;
  cl_mem buffer = nullptr;
  cl_kernel kernel = nullptr;
};
} // namespace

// Forks a child that makes the calls. A child that hangs is ended by a signal,
// at a time when any other child is long done.
static int exitCodeOfFork(Application &app) {
  const pid_t child = fork();
  if (child == 0) {
    alarm(600);
    std::exit(app.callsSucceed() ? EXIT_SUCCESS : EXIT_FAILURE);
  }
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Checks that no child has written results or a log. The application itself has
// not asked for any yet.
static void expectNoResults(const std::string &results,
                            const std::string &log) {
  EXPECT_FALSE(std::filesystem::exists(results + "/autotune.csv"));
  EXPECT_FALSE(std::filesystem::exists(results + "/html"));
  EXPECT_FALSE(std::filesystem::exists(log));
}

static void forkWhileLaunching(const std::string &log, bool tuning) {
  leaksAreIgnored = true;
  const std::string results = log + ".results";
  assignForGood(variable::autotune, tuning ? results.c_str() : nullptr);
  assignForGood(variable::installLocation, "/tools");
  assignForGood(variable::flushOnReleaseContext, "1");
  loose::Behaviour behaviour;
  behaviour.atOnce = true;
  behaviour.remembersRuns = false;
  loose::Runtime runtime(behaviour);
  ASSERT_EQ(runtime.load(), CL_SUCCESS);
  Application app(runtime);
  Application launched(runtime);

  std::atomic<bool> over{false};
  std::thread launching([&] {
    while (!over) {
      EXPECT_EQ(launched.launch(), CL_SUCCESS);
      launched.takeAndDropBuffer();
      EXPECT_EQ(launched.build(), CL_SUCCESS);
    }
  });
  for (int forks = 0; forks != 200 && !testing::Test::HasFailure(); ++forks)
    EXPECT_EQ(exitCodeOfFork(app), EXIT_SUCCESS) << "fork " << forks;
  over = true;
  launching.join();

  expectNoResults(results, log);
  runtime.unload();
  EXPECT_EQ(std::filesystem::exists(results + "/autotune.csv"), tuning);
}

TEST(Fork, BesideLaunchesMakesChildrenThatCallOnAndEndInNormalMode) {
  const Ended ended = runToItsEnd(
      [](const std::string &log) { forkWhileLaunching(log, false); });
  EXPECT_EQ(ended.errorText, std::to_string(ended.diagnosticLog.size()) + "\n");
}

TEST(Fork, BesideLaunchesMakesChildrenThatCallOnAndEndInAutotuningMode) {
  const Ended ended = runToItsEnd(
      [](const std::string &log) { forkWhileLaunching(log, true); });
  EXPECT_EQ(ended.errorText, std::to_string(ended.diagnosticLog.size()) + "\n");
}
