// The moves with programs: making, building, linking, querying, releasing.

#include "tests/fuzz/sequence/Play.h"

#include <algorithm>
#include <array>
#include <iterator>

using namespace corvane;
using namespace corvane::fuzz;
using namespace corvane::test;

void corvane::fuzz::addProgram(Play &play) {
  const ProgramScript script = play.runtime.addProgram();
  play.describe(script);
  play.programs.push_back({script});
}

static cl_int *maybe(Play &play, cl_int &status) {
  return play.input.flag() ? &status : nullptr;
}

static void checkMade(const Heard &heard, const void *handle,
                      const cl_int *status) {
  check(heard.handle == handle, "what the runtime made is handed out");
  check(!status || *status == heard.status,
        "the runtime's status is handed out");
}

void corvane::fuzz::createProgram(Play &play) {
  play.describe(play.runtime.sourceMakes());
  cl_int status = 1;
  cl_int *wanted = maybe(play, status);
  const cl_program program = play.cl().clCreateProgramWithSource(
      play.runtime.context(), 0, nullptr, nullptr, wanted);
  checkMade(play.onlyCall("clCreateProgramWithSource"), program, wanted);
  if (program)
    play.programs.push_back({program});
}

static void CL_CALLBACK ignore(cl_program, void *) {}

void corvane::fuzz::buildProgram(Play &play) {
  const cl_program program = play.pickHandle(play.programs);
  const cl_device_id device = play.runtime.device();
  const bool listed = play.input.flag();
  const cl_int status = play.cl().clBuildProgram(
      program, listed ? 1 : 0, listed ? &device : nullptr,
      play.input.flag() ? "-O" : nullptr, play.input.flag() ? ignore : nullptr,
      nullptr);
  const auto builds = play.recorder.heard("clBuildProgram");
  check(builds.size() == 1 || (builds.size() == 2 && play.tuning),
        "a program is built once, or twice in autotuning mode");
  check(status == builds.back().status, "the last build's status is returned");
}

void corvane::fuzz::linkProgram(Play &play) {
  const bool works = play.input.below(4) != 1;
  play.describe(play.runtime.linkMakes());
  if (!works)
    play.runtime.answer("clLinkProgram", CL_LINK_PROGRAM_FAILURE, 1);
  cl_int status = 1;
  cl_int *wanted = maybe(play, status);
  const cl_program input = play.pickHandle(play.programs);
  const cl_program program = play.cl().clLinkProgram(
      play.runtime.context(), 0, nullptr, nullptr, 1, &input,
      play.input.flag() ? ignore : nullptr, nullptr, wanted);
  const auto links = play.recorder.heard("clLinkProgram");
  check(links.size() == 1 || links.size() == 2, "one link, or two");
  checkMade(links.back(), program, wanted);
  if (program)
    play.programs.push_back({program});
}

static std::size_t countOf(const std::string &names) {
  return 1 +
         static_cast<std::size_t>(std::count(names.begin(), names.end(), ';'));
}

// Checks count and names of a built program, as an application queries them.
static void checkNames(Play &play, cl_program program) {
  const auto ask = [&](cl_program_info what, std::size_t capacity, void *value,
                       std::size_t *size) {
    return play.cl().clGetProgramInfo(program, what, capacity, value, size);
  };
  std::size_t count = 0;
  std::size_t size = 0;
  if (ask(CL_PROGRAM_NUM_KERNELS, sizeof count, &count, nullptr) ||
      ask(CL_PROGRAM_KERNEL_NAMES, 0, nullptr, &size) || size == 0)
    return;
  std::string names(size + 1, '!');
  const cl_int status =
      ask(CL_PROGRAM_KERNEL_NAMES, size, names.data(), nullptr);
  check(status == CL_SUCCESS || play.failing, "names can be had twice");
  if (status != CL_SUCCESS)
    return;
  check(names[size] == '!' && names[size - 1] == '\0', "names end in time");
  check(play.failing || countOf(names) == std::max<std::size_t>(count, 1),
        "there are as many names as kernels");
}

void corvane::fuzz::queryProgram(Play &play) {
  const cl_program program = play.pickHandle(play.programs);
  constexpr cl_program_info what[] = {
      CL_PROGRAM_NUM_KERNELS, CL_PROGRAM_KERNEL_NAMES, CL_PROGRAM_NUM_DEVICES,
      CL_PROGRAM_REFERENCE_COUNT, 0};
  std::array<char, 64> value;
  value.fill('!');
  const std::size_t capacity = play.input.below(32);
  std::size_t size = 0;
  play.cl().clGetProgramInfo(program, what[play.input.below(std::size(what))],
                             capacity,
                             play.input.flag() ? value.data() : nullptr,
                             play.input.flag() ? &size : nullptr);
  check(std::all_of(value.begin() + static_cast<std::ptrdiff_t>(capacity),
                    value.end(), [](char c) { return c == '!'; }),
        "no answer is larger than its place");
  if (program)
    checkNames(play, program);
}

void corvane::fuzz::retainProgram(Play &play) {
  HeldProgram *program = play.pick(play.programs);
  if (program && play.cl().clRetainProgram(program->handle) == CL_SUCCESS)
    ++program->references;
}

void corvane::fuzz::releaseProgram(Play &play) {
  HeldProgram *program = play.pick(play.programs);
  if (!program)
    return;
  const cl_int status = play.cl().clReleaseProgram(program->handle);
  check(status == play.onlyCall("clReleaseProgram").status,
        "the runtime's status is returned");
  if (status == CL_SUCCESS && --program->references == 0)
    Play::drop(play.programs, program);
}
