// Tests of a process that ends while its other threads are at work.

#include "agent/Environment.h"
#include "tests/behaviour/Calls.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/LeakCheck.h"
#include "tests/support/TempFolder.h"
#include "tests/support/loose/Runtime.h"

#include "gtest/gtest.h"

#include <array>
#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>

using namespace corvane;
using namespace corvane::test;

namespace {
class ExitMeanwhile : public testing::TestWithParam<int> {};
} // namespace

static void launchFor(const loose::Runtime &runtime,
                      std::atomic<unsigned> &launches) {
  const DispatchTable &cl = runtime.cl();
  const char *source = "main";
  cl_program program = cl.clCreateProgramWithSource(runtime.context(), 1,
                                                    &source, nullptr, nullptr);
  cl_command_queue queue =
      cl.clCreateCommandQueue(runtime.context(), nullptr, 0, nullptr);
  cl_mem buffer = cl.clCreateBuffer(runtime.context(), CL_MEM_READ_WRITE, 64,
                                    nullptr, nullptr);
  cl.clBuildProgram(program, 0, nullptr, nullptr, nullptr, nullptr);
  cl_kernel kernel = cl.clCreateKernel(program, "sum", nullptr);
  const cl_uint number = 5;
  const std::size_t global = 64;
  cl.clSetKernelArg(kernel, 0, sizeof buffer, &buffer);
  cl.clSetKernelArg(kernel, 1, sizeof number, &number);
  for (;;) {
    cl.clEnqueueNDRangeKernel(queue, kernel, 1, nullptr, &global, nullptr, 0,
                              nullptr, nullptr);
    cl.clBuildProgram(program, 0, nullptr, nullptr, nullptr, nullptr);
    ++launches;
  }
}

// What the threads use is never destroyed, because they run until the process
// is gone.
static void exitWhileLaunching(const std::string &log) {
  leaksAreIgnored = true;
  assignForGood(variable::autotune, (log + ".results").c_str());
  assignForGood(variable::installLocation, "/tools");
  loose::Behaviour behaviour;
  behaviour.atOnce = true;
  behaviour.remembersRuns = false;
  static auto &runtime = *new loose::Runtime(behaviour);
  static std::atomic<unsigned> launches{0};
  ASSERT_EQ(runtime.load(), CL_SUCCESS);
  static std::array<std::thread, 4> threads;
  for (std::thread &thread : threads) {
    thread = std::thread([] { launchFor(runtime, launches); });
    thread.detach();
  }
  while (launches < 50)
    std::this_thread::yield();
}

// Every byte that the message about the length counts is in the file.
TEST_P(ExitMeanwhile, WritesAWholeLog) {
  const Ended ended = runToItsEnd(exitWhileLaunching);
#ifdef _WIN32
  // Windows ends the other threads first. If one of them was moving a variable,
  // the environment is not looked at any more, and nothing is written or
  // counted.
  if (ended.diagnosticLog.empty()) {
    EXPECT_EQ(ended.errorText.find_first_of("0123456789"), std::string::npos);
    return;
  }
#endif
  EXPECT_EQ(ended.errorText, std::to_string(ended.diagnosticLog.size()) + "\n");
  EXPECT_EQ(ended.diagnosticLog.rfind("Frontend loaded\n", 0), 0U);
  EXPECT_EQ(ended.diagnosticLog.find('\0'), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Time, ExitMeanwhile, testing::Range(0, 10));
