// Tests of what stays in memory after very many launches over a runtime that
// keeps nothing itself.

#include "agent/Environment.h"
#include "tests/soak/Process.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/TempFolder.h"
#include "tests/support/loose/Runtime.h"

#include "gtest/gtest.h"

#include <algorithm>
#include <iostream>
#include <list>

using namespace corvane;
using namespace corvane::test;

namespace {
loose::Behaviour forgetful(bool tuning) {
  loose::Behaviour behaviour;
  behaviour.atOnce = true;
  behaviour.variantsSpoil = tuning;
  behaviour.remembersRuns = false;
  return behaviour;
}

/// An application that launches a kernel with two variants very often, and now
/// and then makes new kernels, buffers and programs.
class Endless {
public:
  explicit Endless(bool tuning) : runtime(forgetful(tuning)) {
    environment.emplace_back(variable::autotune,
                             tuning ? folder.text().c_str() : nullptr);
    environment.emplace_back(variable::installLocation, folder.text());
    environment.emplace_back(variable::dumpLog, nullptr);
    EXPECT_EQ(runtime.load(), CL_SUCCESS);
    program = makeProgram("main");
    queue = cl().clCreateCommandQueue(runtime.context(), nullptr, 0, nullptr);
    take();
  }

  void launch(std::size_t times) {
    for (std::size_t i = 0; i != times; ++i) {
      if (i % 4 == 0)
        renew();
      if (i % 64 == 0) {
        EXPECT_EQ(cl().clReleaseProgram(makeProgram("own")), CL_SUCCESS);
      }
      launchOnce(static_cast<cl_uint>(i));
    }
  }

  /// Releases everything; only the unload is left.
  void letGo() {
    giveBack();
    EXPECT_EQ(cl().clReleaseProgram(program), CL_SUCCESS);
    EXPECT_EQ(cl().clReleaseCommandQueue(queue), CL_SUCCESS);
    for (const auto kind :
         {loose::Kind::Kernel, loose::Kind::Buffer, loose::Kind::Event})
      EXPECT_EQ(runtime.shared.alive(kind), 0);
    EXPECT_TRUE(runtime.shared.takeMistakes().empty());
  }

  TempFolder folder{folderInMemory()};
  std::list<EnvGuard> environment;
  loose::Runtime runtime;

private:
  const DispatchTable &cl() const { return runtime.cl(); }

  cl_program makeProgram(const char *source) {
    cl_program made = cl().clCreateProgramWithSource(runtime.context(), 1,
                                                     &source, nullptr, nullptr);
    EXPECT_EQ(cl().clBuildProgram(made, 0, nullptr, nullptr, nullptr, nullptr),
              CL_SUCCESS);
    return made;
  }

  void take() {
    kernel = cl().clCreateKernel(program, "sum", nullptr);
    buffer = cl().clCreateBuffer(runtime.context(), CL_MEM_READ_WRITE, 64,
                                 nullptr, nullptr);
    EXPECT_EQ(cl().clSetKernelArg(kernel, 0, sizeof buffer, &buffer),
              CL_SUCCESS);
  }
  void giveBack() {
    EXPECT_EQ(cl().clReleaseKernel(kernel), CL_SUCCESS);
    EXPECT_EQ(cl().clReleaseMemObject(buffer), CL_SUCCESS);
  }
  void renew() {
    giveBack();
    take();
  }

  void launchOnce(cl_uint number) {
    const std::size_t global = 64;
    const std::size_t local = 4;
    EXPECT_EQ(cl().clSetKernelArg(kernel, 1, sizeof number, &number),
              CL_SUCCESS);
    EXPECT_EQ(cl().clEnqueueNDRangeKernel(queue, kernel, 1, nullptr, &global,
                                          &local, 0, nullptr, nullptr),
              CL_SUCCESS);
  }

  cl_program program = nullptr;
  cl_command_queue queue = nullptr;
  cl_kernel kernel = nullptr;
  cl_mem buffer = nullptr;
};

constexpr std::size_t versions = 3;

std::size_t wantedLaunches() {
  const char *value = std::getenv("CORVANE_SOAK_LAUNCHES");
  return value ? std::strtoull(value, nullptr, 10) : SOAK_LAUNCHES;
}

// How much memory a launch may keep, so that a lost log can be written anew: a
// record, its times, and its entry in the list, which grows by doubling.
constexpr std::size_t bytesPerLaunch = 200;

std::size_t lines(const std::string &text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

/// Bytes that do not count as growth, because an allocator keeps some for
/// itself.
constexpr std::size_t slack = 16384;

// Has everything made that is made only once in a process.
void warmUp(bool tuning) {
  Endless app(tuning);
  app.launch(64);
  app.letGo();
  app.runtime.unload();
}
} // namespace

TEST(Soak, OfAutotunedLaunchesKeepsTheirTimesAndNothingElse) {
  warmUp(true);
  const std::size_t launches = wantedLaunches();
  const std::size_t files = soak::openFiles();
  const std::size_t beforeLoad = soak::liveBytes();
  Endless app(true);
  app.launch(launches / 10); // until every container has its size
  const std::size_t warm = soak::liveBytes();
  app.launch(launches);
  const std::size_t grown = soak::liveBytes() - warm;
  EXPECT_EQ(soak::openFiles(), files);

  std::cout << launches << " launches of " << versions << " versions, "
            << grown / launches << " bytes each\n";
  EXPECT_LE(grown, launches * bytesPerLaunch * SOAK_OVERHEAD + slack);

  app.letGo();
  app.runtime.unload();
  EXPECT_EQ(soak::openFiles(), files);
  EXPECT_LE(soak::liveBytes(), beforeLoad + slack);
  const std::size_t rows = versions * (launches / 10 + launches);
  EXPECT_EQ(lines(app.folder.read(".auto.csv")), rows + 1);
  EXPECT_EQ(lines(app.folder.read("autotune.csv")), rows + 1);
  EXPECT_TRUE(app.folder.has("main.html"));
}

TEST(Soak, OfNormalLaunchesKeepsNothing) {
  warmUp(false);
  const std::size_t launches = wantedLaunches();
  const std::size_t files = soak::openFiles();
  Endless app(false);
  app.launch(launches / 10);
  const std::size_t warm = soak::liveBytes();
  app.launch(launches);
  EXPECT_LE(soak::liveBytes(), warm + slack);
  EXPECT_EQ(soak::openFiles(), files);
  app.letGo();
  app.runtime.unload();
}
