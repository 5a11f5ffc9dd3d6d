// Loads the agent, runs the threads, ends everything, and checks what is left.

#include "tests/races/Round.h"

#include "agent/Environment.h"
#include "tests/races/Application.h"
#include "tests/races/WrittenRows.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <memory>
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
  behaviour.variantsSpoil = plan.tuning;
  behaviour.seed = plan.seed;
  return behaviour;
}

Round::Round(const RoundPlan &roundPlan)
    : plan(roundPlan), folder(folderInMemory()),
      runtime(behaviourOf(roundPlan)) {
  for (const char *name :
       {variable::autotuneShadow, variable::bypassVectorizationSafetyCheck})
    environment.emplace_back(name, nullptr);
  environment.emplace_back(variable::autotune,
                           plan.tuning ? folder.text().c_str() : nullptr);
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
  if (!plan.tuning) {
    EXPECT_FALSE(folder.has(".auto.csv"));
    return 0;
  }
  EXPECT_THAT(folder.read("autotune.csv"), testing::Not(IsEmpty()));
  return expectRows(folder.read(".auto.csv"), reported, reloads());
}
