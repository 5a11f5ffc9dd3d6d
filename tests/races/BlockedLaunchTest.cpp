// Tests of launches that do not return until another thread has done something.
// If that needs a lock that the launch holds, the test never ends.

#include "agent/Environment.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/TempFolder.h"
#include "tests/support/loose/Runtime.h"

#include "gtest/gtest.h"

#include <atomic>
#include <list>
#include <ostream>
#include <thread>

using namespace corvane;
using namespace corvane::test;

namespace {
/// A runtime whose launches can be made to wait for another thread, which is in
/// the middle of something else.
class Blocked {
public:
  explicit Blocked(bool tuning) : runtime(behaviourOf()) {
    environment.emplace_back(variable::autotune,
                             tuning ? folder.text().c_str() : nullptr);
    environment.emplace_back(variable::installLocation, folder.text());
    environment.emplace_back(variable::flushOnReleaseContext, "1");
    EXPECT_EQ(runtime.load(), CL_SUCCESS);
    program = create("main");
    EXPECT_EQ(
        cl().clBuildProgram(program, 0, nullptr, nullptr, nullptr, nullptr),
        CL_SUCCESS);
    queue = cl().clCreateCommandQueue(context(), nullptr, 0, nullptr);
    kernel = cl().clCreateKernel(program, "sum", nullptr);
    takeNewBuffer();
    const cl_uint number = 5;
    EXPECT_EQ(cl().clSetKernelArg(kernel, 1, sizeof number, &number),
              CL_SUCCESS);
  }
  ~Blocked() {
    EXPECT_EQ(cl().clReleaseKernel(kernel), CL_SUCCESS);
    EXPECT_EQ(cl().clReleaseMemObject(buffer), CL_SUCCESS);
    EXPECT_EQ(cl().clReleaseProgram(program), CL_SUCCESS);
    EXPECT_EQ(cl().clReleaseCommandQueue(queue), CL_SUCCESS);
    runtime.shared.drain();
    runtime.unload();
  }

  /// Has another thread do something while a launch waits for it.
  template <typename Action> void launchUntil(Action action) {
    isInside = mayGoOn = false;
    std::thread other([&] {
      wait(isInside);
      action();
      mayGoOn = true;
    });
    EXPECT_EQ(launch(), CL_SUCCESS);
    other.join();
  }

  cl_int launch() {
    const std::size_t global = 64;
    return cl().clEnqueueNDRangeKernel(queue, kernel, 1, nullptr, &global,
                                       nullptr, 0, nullptr, nullptr);
  }
  /// With another buffer a launch needs no order to earlier ones.
  void takeNewBuffer() {
    if (buffer) {
      EXPECT_EQ(cl().clReleaseMemObject(buffer), CL_SUCCESS);
    }
    buffer = createBuffer();
    EXPECT_EQ(cl().clSetKernelArg(kernel, 0, sizeof buffer, &buffer),
              CL_SUCCESS);
  }
  cl_mem createBuffer() {
    return cl().clCreateBuffer(context(), CL_MEM_READ_WRITE, 64, nullptr,
                               nullptr);
  }
  cl_program create(const char *source) {
    return cl().clCreateProgramWithSource(context(), 1, &source, nullptr,
                                          nullptr);
  }
  const DispatchTable &cl() const { return runtime.cl(); }
  cl_context context() const { return runtime.context(); }

  TempFolder folder{folderInMemory()};
  std::list<EnvGuard> environment;
  std::atomic<bool> isInside{false};
  std::atomic<bool> mayGoOn{true};
  std::atomic<bool> mayCallBack{true};
  loose::Runtime runtime;
  cl_program program = nullptr;
  cl_command_queue queue = nullptr;
  cl_kernel kernel = nullptr;
  cl_mem buffer = nullptr;

private:
  static void wait(const std::atomic<bool> &flag) {
    while (!flag)
      std::this_thread::yield();
  }
  loose::Behaviour behaviourOf() {
    loose::Behaviour behaviour;
    behaviour.beforeLaunch = [this] {
      isInside = true;
      wait(mayGoOn);
    };
    behaviour.beforeCallback = [this] { wait(mayCallBack); };
    return behaviour;
  }
};

class BlockedLaunch : public testing::TestWithParam<bool> {
protected:
  Blocked app{GetParam()};
};
} // namespace

TEST_P(BlockedLaunch, IsFreedByAReleaseOfTheContextThatFlushes) {
  EXPECT_EQ(app.cl().clRetainContext(app.context()), CL_SUCCESS);
  app.launchUntil([this] {
    EXPECT_EQ(app.cl().clReleaseContext(app.context()), CL_SUCCESS);
  });
  EXPECT_EQ(app.folder.has("autotune.csv"), GetParam());
}

TEST_P(BlockedLaunch, IsFreedByAThreadThatMakesAQueueAndAProgram) {
  cl_program made = nullptr;
  app.launchUntil([this, &made] {
    cl_command_queue queue =
        app.cl().clCreateCommandQueue(app.context(), nullptr, 0, nullptr);
    EXPECT_EQ(app.cl().clReleaseCommandQueue(queue), CL_SUCCESS);
    made = app.create("own");
  });
  EXPECT_EQ(app.cl().clReleaseProgram(made), CL_SUCCESS);
}

TEST_P(BlockedLaunch, IsFreedByAThreadThatAsksAboutAProgram) {
  app.launchUntil([this] {
    std::size_t count = 0;
    EXPECT_EQ(app.cl().clGetProgramInfo(app.program, CL_PROGRAM_NUM_KERNELS,
                                        sizeof count, &count, nullptr),
              CL_SUCCESS);
    EXPECT_EQ(count, 4U);
  });
}

TEST_P(BlockedLaunch, IsFreedByTheEndOfABuffer) {
  cl_mem another = app.createBuffer();
  app.launchUntil([this, another] {
    EXPECT_EQ(app.cl().clReleaseMemObject(another), CL_SUCCESS);
  });
}

// The second launch waits until the runtime has called back about the first
// one's runs.
TEST_P(BlockedLaunch, IsFreedByTheCompletionOfEarlierRuns) {
  app.mayCallBack = false;
  EXPECT_EQ(app.launch(), CL_SUCCESS);
  app.takeNewBuffer();
  app.launchUntil([this] {
    app.mayCallBack = true;
    app.runtime.shared.drain();
  });
}

INSTANTIATE_TEST_SUITE_P(In, BlockedLaunch, testing::Bool(),
                         [](const auto &test) {
                           return test.param ? "AutotuningMode" : "NormalMode";
                         });
