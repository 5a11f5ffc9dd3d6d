// Launches that the agent may tune later, on a thread of its own, and those
// that it may not.

#include "tests/system/layer/LayeredRuntime.h"
#include "tests/system/layer/TuningAgent.h"

#include "base/LaunchTuningQuery.h"

#include <thread>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {
using Bytes = std::vector<unsigned char>;

constexpr cl_uint notNow = static_cast<cl_uint>(LaunchTuning::NotNow);
constexpr cl_uint allowed = static_cast<cl_uint>(LaunchTuning::Allowed);
constexpr cl_uint kernelOnly = static_cast<cl_uint>(LaunchTuning::KernelOnly);

/// A kernel "k" that counts in the first byte of its buffer, and a variant that
/// adds ten; "single" is a kernel without a variant.
class LayeredTuning : public LayeredRuntime {
protected:
  LayeredTuning() : LayeredRuntime(TUNING_AGENT_FILE) {}

  void start(const Variables &variables) {
    load(variables);
    agent = reinterpret_cast<TuningAgent *(*)()>(agentsExport("tuningAgent"))();
    agent->context = runtime.context();
    const auto count = [](const Launch &l) { ++l.buffer(0)[0]; };
    const auto addTen = [](const Launch &l) { l.buffer(0)[0] += 10; };
    runtime.sourceMakes()
        .kernel("k", 1, count)
        .kernel("k_coarsed_g0S4", 1, addTen)
        .kernel("single", 1, count)
        .kernel("other");
    program = createProgram();
    build(program);
    kernel = create("k");
    unsigned char bytes[] = {1, 2};
    buffer = cl().clCreateBuffer(runtime.context(), CL_MEM_COPY_HOST_PTR,
                                 sizeof bytes, bytes, nullptr);
    set(kernel);
    queue = createQueue();
    beside = createQueue();
    runtime.late();
    runtime.forgetTranscript();
  }
  void startTuning() { start({{"CORVANE_TUNE", folder.file("tuned")}}); }

  cl_kernel create(const char *name) {
    return cl().clCreateKernel(program, name, nullptr);
  }
  void set(cl_kernel where) {
    EXPECT_EQ(cl().clSetKernelArg(where, 0, sizeof buffer, &buffer),
              CL_SUCCESS);
  }
  cl_command_queue createQueue() {
    return cl().clCreateCommandQueue(runtime.context(), runtime.device(), 0,
                                     nullptr);
  }
  void launch(cl_command_queue where, const size_t *offset = nullptr) {
    const size_t global = 64;
    const size_t local = 16;
    EXPECT_EQ(cl().clEnqueueNDRangeKernel(where, kernel, 1, offset, &global,
                                          &local, 0, nullptr, nullptr),
              CL_SUCCESS);
  }
  void write(cl_command_queue where) {
    static const unsigned char fresh = 7;
    EXPECT_EQ(cl().clEnqueueWriteBuffer(where, buffer, CL_FALSE, 0, 1, &fresh,
                                        0, nullptr, nullptr),
              CL_SUCCESS);
  }
  /// What the agent does when it has tuned the launches.
  void endTuning() {
    std::thread([this] {
      for (cl_event event : agent->pending) {
        EXPECT_EQ(agent->runtime.clSetUserEventStatus(event, CL_COMPLETE),
                  CL_SUCCESS);
        EXPECT_EQ(agent->runtime.clReleaseEvent(event), CL_SUCCESS);
      }
      agent->pending.clear();
    }).join();
  }
  /// All commands, the youngest first where wait lists allow.
  void runYoungestFirst() {
    while (runtime.runLast()) {
    }
  }
  std::vector<std::string> launches() {
    return runtime.transcript({"clEnqueueNDRangeKernel"});
  }
  Bytes bytes() { return runtime.bytes(buffer); }

  TuningAgent *agent = nullptr;
  cl_program program = nullptr;
  cl_kernel kernel = nullptr;
  cl_mem buffer = nullptr;
  cl_command_queue queue = nullptr;
  cl_command_queue beside = nullptr;
};
} // namespace

TEST_F(LayeredTuning, IsAllowedWhereNothingElseIsInFlight) {
  startTuning();
  agent->tunes = false;
  launch(queue);
  EXPECT_THAT(agent->answers, ElementsAre(allowed));
}

TEST_F(LayeredTuning, HoldsLaterCommandsBackUntilTheApplicationsRunIsOver) {
  startTuning();
  launch(queue);
  write(beside);
  EXPECT_FALSE(runtime.runLast()) << "one waits for the agent, one for that";
  endTuning();
  runYoungestFirst();
  EXPECT_EQ(bytes(), (Bytes{7, 2}));
}

TEST_F(LayeredTuning, OfALaterLaunchComesAfterTheApplicationsRun) {
  startTuning();
  launch(queue);
  launch(beside);
  EXPECT_THAT(agent->answers, ElementsAre(allowed, allowed));
  // Its first event is the agent's, its second the one of the first launch.
  EXPECT_THAT(launches().back(), HasSubstr("[event 2, event 3]"));
  EXPECT_THAT(runtime.transcript({"clFlush"}), ElementsAre("clFlush(queue 1)"));
  endTuning();
  runYoungestFirst();
  EXPECT_EQ(bytes(), (Bytes{3, 2}));
}

TEST_F(LayeredTuning, ThatDoesNotTakePlaceHoldsNothingBack) {
  startTuning();
  agent->tunes = false;
  launch(queue);
  write(beside);
  EXPECT_THAT(runtime.waiting().back(), HasSubstr(", [], "));
  runtime.runAll();
}

TEST_F(LayeredTuning, OfAnotherThreadIsNotTakenForTheApplicationsLaunch) {
  startTuning();
  agent->tunes = false;
  // In the middle of the launch the agent's own thread creates an event.
  runtime.whenCalled("clEnqueueNDRangeKernel", [&] {
    std::thread([&] {
      agent->pending.push_back(
          agent->runtime.clCreateUserEvent(runtime.context(), nullptr));
    }).join();
  });
  launch(queue);
  write(beside);
  EXPECT_THAT(runtime.waiting().back(), HasSubstr(", [], "));
  endTuning();
  runtime.runAll();
}

TEST_F(LayeredTuning, IsNotConfusedByEventsOfTheApplication) {
  startTuning();
  agent->tunes = false;
  runtime.whenCalled("clEnqueueNDRangeKernel", [&] {
    agent->pending.push_back(
        cl().clCreateUserEvent(runtime.context(), nullptr));
  });
  launch(queue);
  write(beside);
  EXPECT_THAT(runtime.waiting().back(), HasSubstr(", [], "));
  endTuning();
  runtime.runAll();
}

TEST_F(LayeredTuning, LeavesKernelsOfTheAgentsThreadToTheAgent) {
  startTuning();
  // While the application creates a kernel, so does the agent's own thread.
  cl_kernel agents = nullptr;
  runtime.whenCalled("clCreateKernel", [&] {
    static bool first = true;
    if (std::exchange(first, false))
      std::thread([&] {
        agents = agent->runtime.clCreateKernel(program, "other", nullptr);
      }).join();
  });
  kernel = create("single");
  runtime.whenCalled("clCreateKernel", [] {});
  set(kernel);
  launch(queue);
  EXPECT_THAT(agent->answers, ElementsAre(notNow)) << "it has no variant";
  runtime.runAll();
  EXPECT_EQ(cl().clReleaseKernel(kernel), CL_SUCCESS);
  EXPECT_THAT(runtime.alive("kernel"), testing::Contains("kernel other"));
  EXPECT_EQ(agent->runtime.clReleaseKernel(agents), CL_SUCCESS);
}

TEST_F(LayeredTuning, IsNotAllowedBesideACommandOnTheSameMemory) {
  startTuning();
  agent->runsVariants = true;
  write(beside);
  launch(queue);
  EXPECT_THAT(agent->answers, ElementsAre(notNow));
  EXPECT_THAT(launches(), ElementsAre(HasSubstr("kernel k_coarsed_g0S4, ")))
      << "the agent has the launch all the same";
  runtime.runAll();
}

TEST_F(LayeredTuning, IsNotAllowedForALaunchThatWaitsForTheApplication) {
  startTuning();
  const cl_event start = runtime.addEvent();
  const size_t global = 64;
  const size_t local = 16;
  EXPECT_EQ(cl().clEnqueueNDRangeKernel(queue, kernel, 1, nullptr, &global,
                                        &local, 1, &start, nullptr),
            CL_SUCCESS);
  EXPECT_THAT(agent->answers, ElementsAre(notNow));
  runtime.endEvent(start);
  runtime.runAll();
}

TEST_F(LayeredTuning, OfAKernelWithoutVariantsIsNotAllowedButSeen) {
  startTuning();
  kernel = create("single");
  set(kernel);
  launch(queue);
  EXPECT_THAT(agent->answers, ElementsAre(notNow));
  runtime.runAll();
}

TEST_F(LayeredTuning, WithAGlobalOffsetIsForTheKernelOnly) {
  startTuning();
  const size_t offset = 64;
  launch(queue, &offset);
  EXPECT_THAT(agent->answers, ElementsAre(kernelOnly));
  EXPECT_THAT(launches(), ElementsAre(HasSubstr("kernel k, 1, [64], [64], ")));
  runtime.runAll();
}

TEST_F(LayeredTuning, WithAGlobalOffsetRunsTheKernelWhateverTheAgentChooses) {
  startTuning();
  agent->asks = false;
  agent->runsVariants = true;
  const size_t offset = 64;
  launch(queue, &offset);
  EXPECT_EQ(agent->launches, 1u);
  EXPECT_THAT(launches(),
              ElementsAre(HasSubstr("kernel k, 1, [64], [64], [16], ")));
  runtime.runAll();
  EXPECT_EQ(bytes(), (Bytes{2, 2}));
}

TEST_F(LayeredTuning, IsTheAgentsQuestionAndNotTheApplications) {
  startTuning();
  cl_uint answer = 9;
  EXPECT_EQ(cl().clGetKernelInfo(kernel, launchTuningQuery, sizeof answer,
                                 &answer, nullptr),
            CL_INVALID_VALUE);
  EXPECT_EQ(answer, 9u);
}

TEST_F(LayeredTuning, IsNotAllowedOutsideOfALaunch) {
  startTuning();
  EXPECT_EQ(askForLaunchTuning(agent->runtime.clGetKernelInfo, kernel),
            LaunchTuning::NotNow);
  cl_uchar small = 0;
  EXPECT_EQ(agent->runtime.clGetKernelInfo(kernel, launchTuningQuery,
                                           sizeof small, &small, nullptr),
            CL_INVALID_VALUE);
}

TEST_F(LayeredTuning, IsNotAllowedInAProcessThatAsksForNone) {
  start({});
  launch(queue);
  EXPECT_THAT(agent->answers, ElementsAre(notNow));
  write(beside);
  EXPECT_THAT(runtime.waiting().back(), HasSubstr(", [], "));
  runtime.runAll();
}

// An agent that cannot use its folder is in normal mode.
TEST_F(LayeredTuning, IsNotAvoidedByAutotuningWithoutAFolder) {
  start({{"CORVANE_AUTOTUNE", folder.file("missing/out")}});
  write(beside);
  launch(queue);
  EXPECT_EQ(agent->launches, 1u);
  runtime.runAll();
}

TEST_F(LayeredTuning, GivesWayToAutotuning) {
  std::filesystem::create_directory(folder.file("out"));
  start({{"CORVANE_TUNE", folder.file("tuned")},
         {"CORVANE_AUTOTUNE", folder.file("out")}});
  write(beside);
  launch(queue);
  EXPECT_EQ(agent->launches, 0u) << "an agent that autotunes does not ask";
  EXPECT_THAT(launches(), ElementsAre(HasSubstr("kernel k, ")));
  runtime.runAll();
  launch(queue);
  EXPECT_EQ(agent->launches, 1u);
  endTuning();
  runtime.runAll();
}
