// Tests of a flush that takes the state away while threads that never take the
// agent lock use it.

#include "agent/Environment.h"
#include "tests/races/RoundPlan.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/TempFolder.h"
#include "tests/support/loose/Runtime.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

using namespace corvane;
using namespace corvane::test;

namespace {
/// Threads that make only calls that take no lock, from before the flush until
/// after it.
class EndOfState : public testing::Test {
protected:
  EndOfState() {
    const char *source = "main";
    EXPECT_EQ(runtime.load(), CL_SUCCESS);
    program = cl().clCreateProgramWithSource(runtime.context(), 1, &source,
                                             nullptr, nullptr);
    EXPECT_EQ(
        cl().clBuildProgram(program, 0, nullptr, nullptr, nullptr, nullptr),
        CL_SUCCESS);
  }
  ~EndOfState() override {
    EXPECT_EQ(cl().clReleaseProgram(program), CL_SUCCESS);
    runtime.unload();
  }

  const DispatchTable &cl() const { return runtime.cl(); }

  /// Loads and flushes many times; \p use is called again and again meanwhile.
  void playEnds(const std::function<void()> &use) {
    for (unsigned round = 0; round != 10 * wantedRounds(); ++round) {
      EXPECT_EQ(runtime.load(), CL_SUCCESS);
      EXPECT_EQ(
          cl().clBuildProgram(program, 0, nullptr, nullptr, nullptr, nullptr),
          CL_SUCCESS);
      takeBuffers();
      playEnd(use);
    }
  }

  void takeBuffers() {
    for (cl_mem &buffer : buffers)
      buffer = cl().clCreateBuffer(runtime.context(), CL_MEM_READ_WRITE, 64,
                                   nullptr, nullptr);
    released = 0;
  }

  std::vector<cl_mem> buffers = std::vector<cl_mem>(64);
  std::size_t released = 0;
  cl_program program = nullptr;

private:
  void playEnd(const std::function<void()> &use) {
    std::atomic<bool> isUsed{false};
    std::atomic<bool> over{false};
    std::thread user([&] {
      while (!over || released != buffers.size()) {
        use();
        if (released != buffers.size()) {
          EXPECT_EQ(cl().clReleaseMemObject(buffers[released++]), CL_SUCCESS);
        }
        isUsed.store(true, std::memory_order_relaxed);
      }
    });
    while (!isUsed.load(std::memory_order_relaxed))
      std::this_thread::yield();
    EXPECT_EQ(cl().clRetainContext(runtime.context()), CL_SUCCESS);
    EXPECT_EQ(cl().clReleaseContext(runtime.context()), CL_SUCCESS);
    over.store(true, std::memory_order_relaxed);
    user.join();
  }

  TempFolder folder{folderInMemory()};
  EnvGuard output{variable::autotune, folder.text()};
  EnvGuard location{variable::installLocation, folder.text()};
  EnvGuard flushes{variable::flushOnReleaseContext, "1"};
  loose::Runtime runtime{[] {
    loose::Behaviour behaviour;
    behaviour.atOnce = true;
    return behaviour;
  }()};
};
} // namespace

TEST_F(EndOfState, WaitsForTheEndOfABuffer) {
  playEnds([] {});
}

TEST_F(EndOfState, WaitsForAnAnswerAboutAProgram) {
  playEnds([this] {
    std::size_t count = 0;
    EXPECT_EQ(cl().clGetProgramInfo(program, CL_PROGRAM_NUM_KERNELS,
                                    sizeof count, &count, nullptr),
              CL_SUCCESS);
    EXPECT_THAT(count, testing::AnyOf(4U, 8U));
  });
}
