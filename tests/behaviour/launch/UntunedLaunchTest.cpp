// Launches that are not measured: they run once, as alone, and the record says
// why.

#include "tests/behaviour/launch/MeasuredApplication.h"

#include "agent/Environment.h"
#include "tests/support/ErrorCapture.h"

#include <gmock/gmock.h>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {
struct UntunedLaunch : testing::Test {
  explicit UntunedLaunch(const Variables &more = {}) : app(more) {}

  void start() {
    app.addVariant("g0S4", square);
    app.runtime.takes("k_coarsed_g0S4", {1000});
    app.start();
  }
  /// The run must be the application's alone, on its own queue.
  void expectAlone(const std::string &reason) {
    EXPECT_EQ(app.kernelOfNextRun(), "k");
    EXPECT_EQ(app.launches().size(), 1U);
    EXPECT_EQ(app.runtime.bytes(app.output),
              (std::vector<unsigned char>{1, 4, 9, 16}));
    EXPECT_EQ(app.untunable(), reason);
    EXPECT_THAT(app.configuration().samples, IsEmpty());
  }
  MeasuredApplication app;
};
} // namespace

TEST_F(UntunedLaunch, IsThatOfAProgramThatPrints) {
  app.program.source("kernel void k() { printf(\"k\"); }");
  start();
  expectAlone("the program prints");
}

TEST_F(UntunedLaunch, IsThatOfAProgramWithWritableVariables) {
  app.program.source("global int counter; kernel void k() {}");
  start();
  expectAlone("the program has writable variables outside of functions");
}

TEST_F(UntunedLaunch, IsThatOfAKernelWithMemoryThatCannotBeSaved) {
  start();
  const cl_mem unknown = app.runtime.addBuffer(4, CL_MEM_READ_WRITE);
  app.runtime.setBytes(unknown, {1, 2, 3, 4});
  app.set(app.kernel, 0, unknown);
  expectAlone("the kernel gets memory that cannot be saved");
}

TEST_F(UntunedLaunch, IsOneThatWaitsForTheApplication) {
  start();
  app.runtime.late();
  const cl_event gate = app.runtime.addEvent();
  cl_event event = nullptr;
  app.launch(app.kernel, {64}, {4}, &event, {gate});
  EXPECT_EQ(app.untunable(),
            "it waits for an event that the application has to complete");
  EXPECT_THAT(app.launched(), ElementsAre("k"));
  app.runtime.endEvent(gate);
  app.runtime.late(false);
  app.cl.clWaitForEvents(1, &event);
  app.cl.clReleaseEvent(event);
  app.cl.clReleaseEvent(gate);

  // The next one may be measured: the reason is gone.
  app.clearOutput();
  app.run();
  EXPECT_EQ(app.configuration(1).line.untunable, "");
  EXPECT_EQ(app.kernelOfNextRun(), "k_coarsed_g0S4");
}

TEST_F(UntunedLaunch, HasAnOffset) {
  start();
  const std::size_t offset = 4;
  const std::size_t global = 64;
  const std::size_t local = 4;
  cl_event event = nullptr;
  app.cl.clEnqueueNDRangeKernel(app.runtime.queue(), app.kernel, 1, &offset,
                                &global, &local, 0, nullptr, &event);
  app.cl.clWaitForEvents(1, &event);
  app.cl.clReleaseEvent(event);
  EXPECT_EQ(app.untunable(), "the launch has a global offset");
}

TEST_F(UntunedLaunch, RunsTheKernelForAnOffsetAlsoWhereAVariantWon) {
  start();
  app.run();
  EXPECT_EQ(app.kernelOfNextRun(), "k_coarsed_g0S4");
  app.runtime.forgetTranscript();
  const std::size_t offset = 4;
  const std::size_t global = 64;
  const std::size_t local = 4;
  app.cl.clEnqueueNDRangeKernel(app.runtime.queue(), app.kernel, 1, &offset,
                                &global, &local, 0, nullptr, nullptr);
  EXPECT_THAT(app.launched(), ElementsAre("k"));
}

TEST_F(UntunedLaunch, IsOnAQueueWithoutAnOrder) {
  start();
  const cl_command_queue queue = app.cl.clCreateCommandQueue(
      app.runtime.context(), app.runtime.device(),
      CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE, nullptr);
  const std::size_t global = 64;
  const std::size_t local = 4;
  app.cl.clEnqueueNDRangeKernel(queue, app.kernel, 1, nullptr, &global, &local,
                                0, nullptr, nullptr);
  EXPECT_EQ(app.untunable(), "the queue runs its commands in any order");
  app.cl.clReleaseCommandQueue(queue);
}

TEST_F(UntunedLaunch, FailsAsItDoesAlone) {
  start();
  const std::array<std::size_t, 4> sizes = {4, 1, 1, 1};
  EXPECT_EQ(app.cl.clEnqueueNDRangeKernel(app.runtime.queue(), app.kernel, 1,
                                          nullptr, nullptr, sizes.data(), 0,
                                          nullptr, nullptr),
            CL_INVALID_GLOBAL_WORK_SIZE);
  EXPECT_EQ(app.cl.clEnqueueNDRangeKernel(app.runtime.queue(), app.kernel, 4,
                                          nullptr, sizes.data(), nullptr, 0,
                                          nullptr, nullptr),
            CL_INVALID_WORK_DIMENSION);
}

namespace {
struct WithoutTime : UntunedLaunch {
  WithoutTime() : UntunedLaunch({{variable::tuneSeconds, "0"}}) {}
};
} // namespace

TEST_F(WithoutTime, NothingIsMeasured) {
  start();
  expectAlone("the time for tuning is spent");
}

// Whatever the runtime refuses: the application's run is made once. Both
// kernels add 1, so that each run of one shows.
TEST(RefusedCalls, LeaveTheApplicationsRunAsItIs) {
  const auto addOne = [](const Launch &launch) {
    for (unsigned char &element : launch.buffer(1))
      ++element;
  };
  bool refused = true;
  for (std::size_t nth = 1; refused; ++nth) {
    const ErrorCapture errors;
    MeasuredApplication app;
    *app.body = addOne;
    app.addVariant("g0S4", addOne);
    app.start();
    cl_event event = nullptr;
    app.runtime.answerAny(nth, CL_OUT_OF_RESOURCES);
    const cl_int status = app.launch(app.kernel, {64}, {4}, &event);
    ASSERT_EQ(status, CL_SUCCESS) << nth << ": " << app.runtime.failedOfAny();
    while (app.cl.clWaitForEvents(1, &event) == CL_OUT_OF_RESOURCES) {
    }
    app.agent.unload();
    app.cl.clReleaseEvent(event);
    const std::string call = app.runtime.failedOfAny();
    refused = !call.empty();
    EXPECT_EQ(app.runtime.bytes(app.output),
              (std::vector<unsigned char>{1, 1, 1, 1}))
        << nth << ": " << call;
    ASSERT_LT(nth, 1000U);
  }
}

namespace {
/// What a load with these variables says.
std::string saidAtLoad(Variables variables) {
  const TempFolder folder;
  variables.emplace_back(variable::tune, folder.text());
  FakeRuntime runtime;
  const ErrorCapture errors;
  const LoadedAgent agent(runtime, variables);
  return errors.text();
}
} // namespace

TEST(TuningVariables, ThatCannotBeReadAreTold) {
  EXPECT_EQ(saidAtLoad({}), "");
  EXPECT_EQ(saidAtLoad({{variable::samples, "9"},
                        {variable::verify, "1e-5"},
                        {variable::tuneSeconds, "0.5"}}),
            "");
  EXPECT_EQ(saidAtLoad({{variable::samples, "0"}}),
            "CV: CORVANE_SAMPLES is \"0\", which cannot be used: 7 samples are "
            "taken.\n");
  EXPECT_EQ(saidAtLoad({{variable::verify, "exactly\x1b"}}),
            "CV: CORVANE_VERIFY is \"exactly?\", which cannot be used: results "
            "must be equal.\n");
  EXPECT_EQ(
      saidAtLoad({{variable::tuneSeconds, "-1"}}),
      "CV: CORVANE_TUNE_SECONDS is \"-1\", which cannot be used: the time "
      "has no limit.\n");
}

TEST(TuningVariables, GiveWayToThoseOfAutotuning) {
  const TempFolder folder;
  EXPECT_EQ(saidAtLoad({{variable::autotune, folder.text()},
                        {variable::installLocation, folder.text()}}),
            "CV: CORVANE_AUTOTUNE is set, so CORVANE_TUNE does not count.\n");
}
