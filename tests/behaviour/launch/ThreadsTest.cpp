// Four threads of the application and two of the runtime at once. Meant for the
// thread sanitizer.

#include "tests/behaviour/launch/Application.h"

#include "agent/Environment.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

using namespace corvane;
using namespace corvane::test;
using testing::IsEmpty;

namespace {
constexpr int rounds = 16;
constexpr std::size_t applicationThreads = 4;

void addOne(const Launch &launch) { ++launch.buffer(0)[0]; }
void spoil(const Launch &launch) { launch.buffer(0)[0] = 99; }

struct BusyApplication : TuningApplication {
  std::atomic<std::size_t> launched{0};
  std::atomic<bool> over{false};

  BusyApplication()
      : TuningApplication(Variables{{variable::flushOnReleaseContext, "1"}}) {
    program.kernel("k", 2, addOne).kernel("plain", 2, addOne);
    program.kernel("k_coarsed_g0S4", 2, spoil);
    program.kernel("k_coarsed_g0S2d1S4", 2, spoil);
    build();
    runtime.late();
    // With this reference the context exists after the release that flushes.
    cl.clRetainContext(runtime.context());
  }

  // Builds, uses and releases a program that no other thread uses.
  void useProgram() {
    const ProgramScript own =
        runtime.addProgram().kernel("j").kernel("j_coarsed_g0S2");
    EXPECT_EQ(cl.clBuildProgram(own, 0, nullptr, nullptr, nullptr, nullptr),
              CL_SUCCESS);
    std::size_t count = 0;
    EXPECT_EQ(cl.clGetProgramInfo(own, CL_PROGRAM_NUM_KERNELS, sizeof count,
                                  &count, nullptr),
              CL_SUCCESS);
    EXPECT_THAT(count, testing::AnyOf(1U, 2U)); // 2: after the flush
    cl_kernel kernel = cl.clCreateKernel(own, "j", nullptr);
    EXPECT_EQ(launch(kernel, {16}), CL_SUCCESS);
    EXPECT_EQ(release(kernel), CL_SUCCESS);
    EXPECT_EQ(cl.clReleaseProgram(own), CL_SUCCESS);
  }

  void useKernel(const char *name, int round) {
    cl_kernel kernel = cl.clCreateKernel(program, name, nullptr);
    cl_mem buffer = cl.clCreateBuffer(runtime.context(), CL_MEM_READ_WRITE, 64,
                                      nullptr, nullptr);
    EXPECT_EQ(set(kernel, 0, buffer), CL_SUCCESS);
    EXPECT_EQ(set(kernel, 1, cl_int{round}), CL_SUCCESS);
    cl_event event = nullptr;
    EXPECT_EQ(launch(kernel, {64}, {}, &event), CL_SUCCESS);
    if (event) { // none after the flush
      ++launched;
      EXPECT_EQ(launch(kernel, {63}, {}, nullptr, {event}), CL_SUCCESS);
      EXPECT_EQ(cl.clReleaseEvent(event), CL_SUCCESS);
    }
    EXPECT_EQ(cl.clReleaseMemObject(buffer), CL_SUCCESS);
    EXPECT_EQ(release(kernel), CL_SUCCESS);
  }

  void run(std::size_t thread) {
    for (int round = 0; round != rounds; ++round) {
      useKernel(thread % 2 == 0 ? "k" : "plain", round);
      useProgram();
      if (thread == 0 && round == rounds / 2) {
        EXPECT_EQ(cl.clReleaseContext(runtime.context()), CL_SUCCESS);
      }
    }
  }

  // Runs commands and calls back, as a thread of the runtime does.
  void runCommands() {
    while (!over)
      if (!runtime.runFirst())
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    runtime.runAll();
  }
};
} // namespace

TEST(Threads, MayMixAllHooksWhileRunsCompleteAndAFlushComesInBetween) {
  BusyApplication app;
  std::vector<std::thread> applications;
  std::vector<std::thread> runtimes;
  for (std::size_t i = 0; i != applicationThreads; ++i)
    applications.emplace_back([&app, i] { app.run(i); });
  for (int i = 0; i != 2; ++i)
    runtimes.emplace_back([&app] { app.runCommands(); });
  for (std::thread &thread : applications)
    thread.join();
  app.over = true;
  for (std::thread &thread : runtimes)
    thread.join();

  EXPECT_GE(app.launched, std::size_t{rounds / 2});
  EXPECT_THAT(app.runtime.alive("event"), IsEmpty());
  EXPECT_NE(app.folder.read("autotune.csv"), "");
}

TEST(Threads, WriteWholeLinesThatAreAllThere) {
  TuningApplication app;
  app.program.kernel("k").kernel("k_coarsed_g0S4");
  app.build();
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i != applicationThreads; ++i)
    threads.emplace_back([&app] {
      cl_kernel kernel = app.cl.clCreateKernel(app.program, "k", nullptr);
      for (int round = 0; round != rounds; ++round)
        EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
      EXPECT_EQ(app.release(kernel), CL_SUCCESS);
    });
  for (std::thread &thread : threads)
    thread.join();

  const std::string rows = app.log().substr(std::string(app.header).size());
  const std::string pair = "k,16,,,0,,,g0S4,1.000\nk,16,,,0,,,baseline,1.000\n";
  std::string expected;
  for (std::size_t i = 0; i != rounds * applicationThreads; ++i)
    expected += pair;
  EXPECT_EQ(rows, expected);
}

TEST(Threads, MayLaunchVariantsOfOneKernelAtATimeInNormalMode) {
  Application app;
  app.program.kernel("k", 1).kernel("k_coarsed_g0S4", 1);
  cl_kernel kernel = app.create("k");
  app.set(kernel, 0, cl_int{0});
  app.runtime.forgetTranscript();
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i != applicationThreads; ++i)
    threads.emplace_back([&app, kernel] {
      for (int round = 0; round != rounds; ++round) {
        EXPECT_EQ(app.set(kernel, 0, cl_int{round}), CL_SUCCESS);
        EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
      }
    });
  for (std::thread &thread : threads)
    thread.join();
  EXPECT_THAT(
      app.launches(),
      testing::AllOf(testing::SizeIs(rounds * applicationThreads),
                     testing::Each(plainLaunch("k_coarsed_g0S4", "[4]"))));
}
