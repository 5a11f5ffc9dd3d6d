// What the application does with its programs.

#include "tests/faults/Story.h"

#include "agent/Environment.h"
#include "tests/behaviour/Calls.h"

#include "gtest/gtest.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <regex>

using namespace corvane;
using namespace corvane::test;

// out[i] += in[i] + number + the first byte of the structure
static void sum(const Launch &launch) {
  const auto &in = launch.buffer(1);
  auto &out = launch.buffer(0);
  for (std::size_t i = 0; i != out.size(); ++i)
    out[i] = static_cast<unsigned char>(out[i] + in[i % in.size()] +
                                        launch.value<cl_int>(2) +
                                        launch.value<unsigned char>(3));
}

// Variants that are timed may leave any contents in their buffers.
static void spoil(const Launch &launch) {
  for (const std::size_t index : {0, 1})
    std::fill(launch.buffer(index).begin(), launch.buffer(index).end(), 0xEE);
}

// A variant that computes wrongly unless it got the number of work-groups.
static void sumInGroups(const Launch &launch) {
  const auto groups = launch.value<std::array<cl_uint, 3>>(5);
  const std::size_t local = launch.local[0];
  const std::size_t asked = local == 0 ? 0 : launch.global[0] * 4 / local;
  return groups[0] == asked ? sum(launch) : spoil(launch);
}

static constexpr const char *allNames =
    "sum;sum_coarsed_g0S2d2S3;sum_coarsed_g0S4;plain;sum_coarsed_r1c0S2";

static void describe(ProgramScript program, const bool &tunes) {
  const auto variant = [&tunes](void (*body)(const Launch &)) {
    return [&tunes, body](const Launch &launch) {
      return tunes ? spoil(launch) : body(launch);
    };
  };
  program.kernel("sum", 5, sum)
      .kernel("sum_coarsed_g0S2d2S3", 5, variant(sum))
      .kernel("sum_coarsed_g0S4", 6, variant(sumInGroups))
      .kernel("plain", 1, [](const Launch &l) { ++l.buffer(0)[0]; })
      .kernel("sum_coarsed_r1c0S2", 5, variant(sum));
}

void Story::describePrograms() {
  describe(runtime.sourceMakes(), tunes);
  // The second program's variant spills registers, but not when it is built
  // again.
  ProgramScript second = runtime.sourceMakes();
  describe(second.log(spillLog), tunes);
  describe(second.thenBuilt(), tunes);
  for (int i = 0; i != 3; ++i) // links that fail use one up each
    describe(runtime.linkMakes(), tunes);
}

void Story::build(cl_program program) {
  if (!program)
    return;
  caller.tryTwice("clBuildProgram",
                  [&] { return test::build(caller.cl(), program); });
  recordWhatIsKnown();
}

// Called after a build or a link.
void Story::recordWhatIsKnown() {
  directoryHidden = how.tuning && !std::getenv(variable::autotune);
  if (caller.wasRefused("clGetKernelInfo"))
    namesKnown = false;
  if (caller.wasRefused("clCreateKernelsInProgram"))
    kernelsKnown = false;
}

// Expects the application's kernels, once for each build. A kernel whose name
// is empty counts as one of them. There are none if the agent could not have
// the kernels created. For a program that the agent has not looked at, the
// runtime answers.
void Story::expectKernels(std::size_t count, const std::string &names) const {
  if (count == 0 && !kernelsKnown) {
    EXPECT_EQ(names, "");
    return;
  }
  const auto separators = std::count(names.begin(), names.end(), ';');
  EXPECT_EQ(static_cast<std::size_t>(separators) + 1, count);
  if (names == allNames && (!loaded || !tunes || directoryHidden))
    return;
  const std::string one = namesKnown ? "sum;plain" : "(sum|plain|;)*";
  // The standard library's expressions: GoogleTest's have no groups on Windows.
  const std::regex builds(one + "(;" + one + ")*");
  EXPECT_TRUE(std::regex_match(names, builds)) << names;
}

void Story::askForKernels(cl_program program) {
  if (!program)
    return;
  std::size_t count = 0;
  const bool counted = caller.tryTwice("clGetProgramInfo", [&] {
    return caller.cl().clGetProgramInfo(program, CL_PROGRAM_NUM_KERNELS,
                                        sizeof count, &count, nullptr);
  });
  std::array<char, 256> names{};
  const bool named = caller.tryTwice("clGetProgramInfo", [&] {
    return caller.cl().clGetProgramInfo(program, CL_PROGRAM_KERNEL_NAMES,
                                        names.size(), names.data(), nullptr);
  });
  if (counted && named)
    expectKernels(count, names.data());
}

cl_kernel Story::create(cl_program program, const char *name) {
  cl_kernel kernel = nullptr;
  if (program)
    caller.tryTwice("clCreateKernel", [&] {
      cl_int status = CL_SUCCESS;
      kernel = caller.cl().clCreateKernel(program, name, &status);
      return status;
    });
  kernels.push_back(kernel);
  return kernel;
}

// The agent refuses an array for more kernels than it knows of, but writes
// those that it has. A variant whose name it could not read it takes for a
// kernel.
void Story::createAll(cl_program program) {
  for (int attempt = 0; program && attempt != 2; ++attempt) {
    std::array<cl_kernel, 8> created{};
    cl_uint count = 0;
    const bool worked = caller.tryOnce("clCreateKernelsInProgram", [&] {
      return caller.cl().clCreateKernelsInProgram(program, 2, created.data(),
                                                  &count);
    });
    kernels.insert(kernels.end(), created.begin(), created.end());
    if (!worked)
      continue;
    if (!caller.wasRefused("clGetKernelInfo")) {
      EXPECT_EQ(count, 2U);
    }
    for (std::size_t i = 0; i != created.size(); ++i)
      EXPECT_EQ(created[i] != nullptr, i < count);
    return;
  }
}

void Story::linkProgram() {
  cl_program linked = nullptr;
  caller.tryTwice("clLinkProgram", [&] {
    cl_int status = CL_SUCCESS;
    linked = caller.cl().clLinkProgram(runtime.context(), 0, nullptr, nullptr,
                                       0, nullptr, nullptr, nullptr, &status);
    return status;
  });
  programs.push_back(linked);
  recordWhatIsKnown();
  // In normal mode nothing is known of a linked program.
  if (tunes)
    askForKernels(linked);
  launchSum(create(linked, "sum"), 0, 1, 3);
}
