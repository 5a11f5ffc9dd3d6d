// What the application does, from its first call to its last.

#include "tests/faults/Story.h"

#include "agent/Environment.h"
#include "tests/support/AgentMemory.h"

#include "gtest/gtest.h"

#include <algorithm>
#include <filesystem>

using namespace corvane;
using namespace corvane::test;

std::string corvane::test::textOf(Running running) {
  switch (running) {
  case Running::AtOnce:
    return "AtOnce";
  case Running::BeforeTheRelease:
    return "Late";
  case Running::AfterTheUnload:
    return "AfterTheUnload";
  }
  return "";
}

Story::Story(const Telling &telling, const TempFolder &output)
    : how(telling), folder(output), boundary(runtime),
      caller(runtime, boundary) {
  environment.emplace_back(variable::installLocation, "/nowhere");
  environment.emplace_back(variable::autotune,
                           how.tuning ? folder.text().c_str() : nullptr);
  std::filesystem::remove(folder.file(".auto.csv"));
  runtime.recycleHandles();
  runtime.late(how.running != Running::AtOnce);
  describePrograms();
}

void Story::tell() {
  loaded = caller.load();
  caller.tryTwice("clCreateCommandQueue", [this] {
    cl_int status = CL_SUCCESS;
    queue = caller.cl().clCreateCommandQueue(runtime.context(),
                                             runtime.device(), 0, &status);
    return status;
  });
  for (int i = 0; i != 3; ++i)
    buffers.push_back(createBuffer(8, static_cast<unsigned char>(1 + 50 * i)));

  // The agent watches the end of buffers only if it autotunes.
  tunes = caller.calls().count("clSetMemObjectDestructorCallback") != 0;
  caller.expectTuning(tunes);

  for (int i = 0; i != 2; ++i) {
    caller.tryTwice("clCreateProgramWithSource", [this] {
      cl_int status = CL_SUCCESS;
      programs.push_back(caller.cl().clCreateProgramWithSource(
          runtime.context(), 0, nullptr, nullptr, &status));
      return status;
    });
    build(programs.back());
    askForKernels(programs.back());
  }
  cl_kernel sum = create(programs.front(), "sum");
  cl_kernel plain = create(programs.front(), "plain");
  launchAll(sum, plain);
  createAll(programs.front());
  linkProgram();
  build(programs.front());
  askForKernels(programs.front());

  if (how.running == Running::BeforeTheRelease)
    runCommands();
  releaseEverything();
  caller.unload();
  runCommands();
  expectContents();
}

void Story::releaseBuffer(cl_mem buffer) {
  if (buffer)
    caller.tryTwice("clReleaseMemObject",
                    [&] { return caller.cl().clReleaseMemObject(buffer); });
}

void Story::releaseKernel(cl_kernel kernel) {
  if (kernel)
    caller.tryTwice("clReleaseKernel",
                    [&] { return caller.cl().clReleaseKernel(kernel); });
  if (caller.wasRefused("clGetKernelInfo"))
    countLost = true;
}

void Story::releaseProgram(cl_program program) {
  if (program)
    caller.tryTwice("clReleaseProgram",
                    [&] { return caller.cl().clReleaseProgram(program); });
}

void Story::releaseEverything() {
  if (latest)
    caller.tryTwice("clReleaseEvent",
                    [this] { return caller.cl().clReleaseEvent(latest); });
  for (cl_kernel kernel : kernels)
    releaseKernel(kernel);
  for (cl_mem buffer : buffers)
    releaseBuffer(buffer);
  for (cl_program program : programs)
    releaseProgram(program);
  if (queue)
    caller.tryTwice("clReleaseCommandQueue", [this] {
      return caller.cl().clReleaseCommandQueue(queue);
    });
}

void Story::runCommands() {
  runtime.runAll();
  if (!AgentMemory::hasRefused())
    return;
  callbacksRefused = true;
  AgentMemory::refuseNothing();
}

void Story::expectContents() {
  if (tunes ? unrestored : !variantsWhole)
    return;
  for (const auto &[buffer, bytes] : contents)
    contentsOfTheGone.push_back(bytes);
  for (const Contents &bytes : contentsOfTheGone)
    EXPECT_EQ(*bytes.are, bytes.shouldBe);
}

std::size_t Story::rows() const {
  const std::string log = folder.read(".auto.csv");
  const auto lines = std::count(log.begin(), log.end(), '\n');
  return lines == 0 ? 0 : static_cast<std::size_t>(lines) - 1;
}

std::size_t Story::rowsExpected() const {
  return !tunes || how.running == Running::AfterTheUnload
             ? 0
             : caller.callsThatWorked("clSetEventCallback");
}

std::vector<std::string> Story::leftovers() {
  std::vector<std::string> names;
  for (const char *kind : {"event", "kernel", "program", "buffer"})
    for (const std::string &name : runtime.alive(kind))
      if (!countLost || name.find("_coarsed_") == std::string::npos)
        names.push_back(name);
  return names;
}
