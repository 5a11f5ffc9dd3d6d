// Loads the agent, runs the threads, ends everything, and checks what is left.

#include "tests/races/Round.h"

#include "agent/Environment.h"
#include "results/profile/ProfileFile.h"
#include "tests/races/Application.h"
#include "tests/races/WrittenRows.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <memory>
#include <string>
#include <thread>
#include <vector>

using namespace corvane;
using namespace corvane::test;
using testing::IsEmpty;

static constexpr unsigned threadCount = 8;
static constexpr unsigned stepCount = 20;

static loose::Behaviour behaviourOf(const RoundPlan &plan) {
  loose::Behaviour behaviour;
  behaviour.atOnce = plan.atOnce;
  behaviour.variantsSpoil = plan.mode == Mode::Autotuning;
  behaviour.writesAreTruth = plan.mode == Mode::Measuring;
  behaviour.seed = plan.seed;
  return behaviour;
}

// By: printf 'source 0\nmain' | sha256sum, and the same with "own".
static constexpr const char *hashOfMain =
    "6e599785d74c76eb5840caf7be419dfa4a5c64f3e8fe4846494558a1c08fa00b";
static constexpr const char *hashOfOwn =
    "7e70cbce5d709d04d7570469dac3bd556eb1979693ad5108374ddbf0b030e13b";

static ProfileEntry entryOf(std::size_t program, const char *kernel,
                            const char *use) {
  ProfileEntry entry;
  entry.program = program;
  entry.kernel = kernel;
  entry.use = use;
  entry.sizes.global[0] = 64;
  entry.versions[""] = {10.0, 7, Agreement::Equal};
  entry.versions[use] = {5.0, 7, Agreement::Equal};
  return entry;
}

// Variants for launches of 64 work-items, whatever their work-groups.
static Profile roundProfile() {
  Profile profile;
  profile.devices = {{"loose device", "maker", "1.0"}};
  profile.programs = {hashOfMain, hashOfOwn};
  profile.entries = {entryOf(0, "sum", "g0S4"), entryOf(0, "pair", "g0S2d2S2"),
                     entryOf(1, "own", "g0S2")};
  return profile;
}

Round::Round(const RoundPlan &roundPlan)
    : plan(roundPlan), folder(folderInMemory()),
      runtime(behaviourOf(roundPlan)) {
  for (const char *name :
       {variable::autotuneShadow, variable::bypassVectorizationSafetyCheck})
    environment.emplace_back(name, nullptr);
  const std::string path = folder.text();
  const auto folderIn = [&](Mode mode) {
    return plan.mode == mode ? path.c_str() : nullptr;
  };
  environment.emplace_back(variable::autotune, folderIn(Mode::Autotuning));
  environment.emplace_back(variable::tune, folderIn(Mode::Measuring));
  environment.emplace_back(variable::profile, folderIn(Mode::Profiled));
  if (plan.mode == Mode::Profiled) {
    EXPECT_TRUE(folder.write("profile.json", profileText(roundProfile())));
  }
  environment.emplace_back(variable::installLocation, folder.text());
  environment.emplace_back(variable::flushOnReleaseContext,
                           flushesWithContext() ? "1" : nullptr);
  // Every other round has a diagnostic log. It is dropped, because the variable
  // is undefined at the end.
  environment.emplace_back(variable::dumpLog,
                           plan.seed % 2 == 0 ? "/nowhere/log" : nullptr);
}

void Round::prepare() {
  EXPECT_EQ(runtime.load(), CL_SUCCESS);
  const char *source = "main";
  program =
      cl().clCreateProgramWithSource(context(), 1, &source, nullptr, nullptr);
  EXPECT_EQ(cl().clBuildProgram(program, 0, nullptr, nullptr, nullptr, nullptr),
            CL_SUCCESS);
  queue = cl().clCreateCommandQueue(context(), nullptr, 0, nullptr);
  sharedKernel = cl().clCreateKernel(program, "tick", nullptr);
  const cl_uint ticks = 1;
  EXPECT_EQ(cl().clSetKernelArg(sharedKernel, 0, sizeof ticks, &ticks),
            CL_SUCCESS);
}

std::size_t Round::play() {
  prepare();
  std::vector<std::unique_ptr<Application>> applications;
  for (unsigned i = 0; i != threadCount; ++i)
    applications.push_back(std::make_unique<Application>(*this, i));
  std::vector<std::thread> threads;
  threads.reserve(threadCount);
  for (const auto &application : applications)
    threads.emplace_back([&application] { application->run(stepCount); });
  for (std::thread &thread : threads)
    thread.join();
  finish();
  return check();
}

void Round::finish() {
  for (auto &slot : slots)
    if (cl_mem left = slot.exchange(nullptr)) {
      EXPECT_EQ(cl().clReleaseMemObject(left), CL_SUCCESS);
    }
  EXPECT_EQ(cl().clReleaseKernel(sharedKernel), CL_SUCCESS);
  EXPECT_EQ(cl().clReleaseProgram(program), CL_SUCCESS);
  EXPECT_EQ(cl().clReleaseCommandQueue(queue), CL_SUCCESS);
  runtime.shared.drain();
  runtime.shared.announceFlush();
  runtime.unload();
}

void Round::releaseContext() {
  if (flushesWithContext())
    runtime.shared.announceFlush();
  EXPECT_EQ(cl().clRetainContext(context()), CL_SUCCESS);
  EXPECT_EQ(cl().clReleaseContext(context()), CL_SUCCESS);
}

void Round::takeTurn() {
  switch (plan.turn) {
  case Turn::None:
  case Turn::ContextReleases:
    return releaseContext();
  case Turn::Unload:
  case Turn::ContextAndUnload:
    runtime.shared.announceFlush();
    return runtime.unload();
  case Turn::UnloadAndLoad:
    runtime.shared.announceFlush();
    runtime.unload();
    [[fallthrough]];
  case Turn::SecondLoad:
    for (int i = 0; i != 8; ++i)
      EXPECT_EQ(runtime.load(), CL_SUCCESS);
    return;
  }
}

std::size_t Round::check() {
  EXPECT_THAT(runtime.shared.takeMistakes(), IsEmpty());
  for (const loose::Kind kind :
       {loose::Kind::Queue, loose::Kind::Buffer, loose::Kind::Event})
    EXPECT_EQ(runtime.shared.alive(kind), 0) << static_cast<int>(kind);
  // A kernel that the agent has forgotten keeps its variants alive.
  if (plan.turn == Turn::None || plan.turn == Turn::SecondLoad)
    for (const loose::Kind kind : {loose::Kind::Kernel, loose::Kind::Program}) {
      EXPECT_EQ(runtime.shared.alive(kind), 0) << static_cast<int>(kind);
    }
  const auto reported = runtime.shared.takeReported();
  if (plan.mode == Mode::Autotuning) {
    EXPECT_THAT(folder.read("autotune.csv"), testing::Not(IsEmpty()));
    return expectRows(folder.read(".auto.csv"), reported, reloads());
  }
  EXPECT_FALSE(folder.has(".auto.csv"));
  // Without the agent, or with a new one, all threads may have little to do.
  if (plan.turn == Turn::None) {
    EXPECT_GT(runtime.shared.variantRuns(), 0U);
  }
  return plan.mode == Mode::Measuring ? expectRecords(folder) : 0;
}
