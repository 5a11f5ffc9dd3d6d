// Processes that measure variants or have a profile, while one call to the
// runtime fails: each launch of theirs runs once, and nothing is left over.

#include "agent/Environment.h"
#include "results/profile/ProfileFile.h"
#include "results/runs/RunReader.h"
#include "tests/behaviour/Calls.h"
#include "tests/faults/ProfiledKernel.h"
#include "tests/support/AgentBoundary.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/ErrorCapture.h"
#include "tests/support/FakeRuntime.h"
#include "tests/support/TempFolder.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <CL/cl.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

using namespace corvane;
using namespace corvane::test;
using testing::IsEmpty;

namespace {
constexpr unsigned launches = 3;

void spoilAll(const Launch &launch) {
  for (unsigned char &element : launch.buffer(0))
    element = 0xEE;
}

/// From the load to the unload. A call that fails is made once more.
class Process {
public:
  /// Has the profile of \p folder, unless it writes what it measures there.
  Process(bool measures, const TempFolder &folder)
      : environment(measures ? variable::tune : variable::profile,
                    folder.text()) {
    program.source(profiledSource)
        .kernel("k", 1, incrementAll)
        .kernel("k_coarsed_g0S2", 1, incrementAll)
        .kernel("k_coarsed_g0S4", 1, measures ? spoilAll : incrementAll);
    runtime.takes("k", {10000});
    runtime.takes("k_coarsed_g0S4", {100});
  }

  void tell() {
    makeAll();
    for (unsigned i = 0; i != launches; ++i)
      launch();
    EXPECT_EQ(unsigned{runtime.bytes(buffer).front()}, launches);
    releaseAll();
    boundary.unload();
  }

  /// Whether a variant ran in place of the kernel, once it was decided.
  bool ranVariant() const { return lastLaunched != "k"; }

  std::vector<std::string> leftovers() {
    std::vector<std::string> names;
    for (const char *kind : {"event", "kernel", "program", "buffer"})
      for (const std::string &name : runtime.alive(kind))
        names.push_back(name);
    return names;
  }

  FakeRuntime runtime;

private:
  const DispatchTable &cl() const { return boundary.table(); }

  void twice(const char *what, const std::function<cl_int()> &call) {
    if (call() == CL_SUCCESS)
      return;
    EXPECT_EQ(call(), CL_SUCCESS) << what << " failed twice";
  }

  void makeAll() {
    twice("the load", [this] { return boundary.load(); });
    twice("the build", [this] { return build(cl(), program); });
    twice("the buffer", [this] {
      buffer = createBuffer(runtime, cl());
      return buffer ? CL_SUCCESS : CL_OUT_OF_RESOURCES;
    });
    twice("the kernel", [this] {
      kernel = cl().clCreateKernel(program, "k", nullptr);
      return kernel ? CL_SUCCESS : CL_OUT_OF_RESOURCES;
    });
    twice("the argument", [this] {
      return cl().clSetKernelArg(kernel, 0, sizeof buffer, &buffer);
    });
  }

  void launch() {
    const std::size_t global = 64;
    cl_event event = nullptr;
    runtime.forgetTranscript();
    twice("the launch", [&] {
      return cl().clEnqueueNDRangeKernel(runtime.queue(), kernel, 1, nullptr,
                                         &global, nullptr, 0, nullptr, &event);
    });
    twice("the wait", [&] { return cl().clWaitForEvents(1, &event); });
    cl_int status = CL_SUBMITTED;
    twice("the query", [&] {
      return cl().clGetEventInfo(event, CL_EVENT_COMMAND_EXECUTION_STATUS,
                                 sizeof status, &status, nullptr);
    });
    EXPECT_EQ(status, CL_COMPLETE);
    twice("the end of the event", [&] { return cl().clReleaseEvent(event); });
    const std::string last =
        runtime.transcript({"clEnqueueNDRangeKernel"}).back();
    const std::size_t begin = last.find("kernel ") + 7;
    lastLaunched = last.substr(begin, last.find(',', begin) - begin);
  }

  void releaseAll() {
    twice("the end of the kernel",
          [this] { return cl().clReleaseKernel(kernel); });
    twice("the end of the buffer",
          [this] { return cl().clReleaseMemObject(buffer); });
    twice("the end of the program",
          [this] { return cl().clReleaseProgram(program); });
  }

  const EnvGuard environment;
  AgentBoundary boundary{runtime};
  ProgramScript program = runtime.addProgram();
  cl_mem buffer = nullptr;
  cl_kernel kernel = nullptr;
  std::string lastLaunched;
};

/// Of a process that measures, or has a profile.
class FailingCalls : public testing::TestWithParam<bool> {
protected:
  void SetUp() override {
    if (!GetParam()) {
      ASSERT_TRUE(
          folder.write("profile.json", profileText(profileOf({64}, "g0S2"))));
    }
  }

  // Every record that the processes have left can be read.
  void expectRecords() const {
    const std::filesystem::path runs = folder.path() / "runs";
    if (!std::filesystem::exists(runs))
      return;
    for (const auto &run : std::filesystem::directory_iterator(runs)) {
      EXPECT_EQ(readRun(readBytes(run.path() / "run.jsonl")).problemCount, 0U);
    }
    std::filesystem::remove_all(runs);
  }

  // Returns the call that failed; empty if there were not so many.
  std::string tellWithout(std::size_t call, cl_int code) {
    const ErrorCapture errors;
    Process process(GetParam(), folder);
    process.runtime.answerAny(call, code);
    process.tell();
    const std::string failed = process.runtime.failedOfAny();
    // What the runtime refused to release is not expected to be gone, and not
    // the variants of a kernel whose references it did not tell.
    if (failed.find("clRelease") == std::string::npos &&
        failed != "clGetKernelInfo") {
      EXPECT_THAT(process.leftovers(), IsEmpty());
    }
    expectRecords();
    return failed;
  }

  const TempFolder folder{folderInMemory()};
};
} // namespace

TEST_P(FailingCalls, ChangeNoResultAndLeaveNothing) {
  {
    const ErrorCapture errors;
    Process usual(GetParam(), folder);
    usual.tell();
    EXPECT_TRUE(usual.ranVariant());
    EXPECT_THAT(usual.leftovers(), IsEmpty());
    expectRecords();
  }
  for (const cl_int code : {CL_OUT_OF_RESOURCES, CL_INVALID_VALUE, -9999}) {
    std::size_t n = 1;
    for (;; ++n) {
      SCOPED_TRACE("call " + std::to_string(n) + " fails");
      const std::string failed = tellWithout(n, code);
      ASSERT_FALSE(HasFailure()) << failed;
      if (failed.empty())
        break;
    }
    EXPECT_GT(n, 20U);
    std::printf("[ faults   ] %zu calls, each failed once with %d\n", n - 1,
                code);
  }
}

INSTANTIATE_TEST_SUITE_P(, FailingCalls, testing::Bool(), [](const auto &test) {
  return test.param ? "Measured" : "Profiled";
});
