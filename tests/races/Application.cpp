// Chooses and makes the calls of one thread, and checks its buffers.

#include "tests/races/Application.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <array>

using namespace corvane;
using namespace corvane::test;

static constexpr std::size_t wordCount = 16;

/// How many kernels the round's program has: without and with the variants.
static constexpr cl_uint ordinaryKernels = 4;
static constexpr cl_uint allKernels = 8;

Application::Application(Round &ofRound, unsigned itsNumber)
    : round(ofRound), number(itsNumber), random(ofRound.plan.seed + itsNumber) {
  for (Owned *owned : {&out, &in}) {
    owned->buffer = createBuffer();
    owned->words.assign(wordCount, 0);
  }
}

void Application::run(unsigned steps) {
  for (unsigned i = 0; i != steps; ++i) {
    if (i == steps / 2 && number == 0)
      round.takeTurn();
    if (round.flushesWithContext() && i == steps / 2 + number)
      round.releaseContext();
    step();
  }
  waitForLatest();
  expectContents(out);
  expectContents(in);
  if (latest) {
    EXPECT_EQ(round.cl().clReleaseEvent(latest), CL_SUCCESS);
  }
  for (const Owned *owned : {&out, &in}) {
    EXPECT_EQ(round.cl().clReleaseMemObject(owned->buffer), CL_SUCCESS);
  }
}

void Application::step() {
  switch (random() % 10) {
  case 0:
    return useAllKernels();
  case 1:
    return useOwnProgram("own");
  case 2:
    return useOwnProgram("spilling");
  case 3:
    return linkProgram();
  case 4:
    return useOwnQueue();
  case 5:
    return throwBuffersAway();
  case 6:
    return launchSharedKernel();
  case 7:
    return askForKernels();
  default:
    return useKernel();
  }
}

void Application::useKernel() {
  static constexpr std::array<const char *, 4> names{"sum", "pair", "plain",
                                                     "sum"};
  const char *name = names[random() % names.size()];
  cl_int status = CL_INVALID_VALUE;
  cl_kernel kernel = round.cl().clCreateKernel(round.program, name, &status);
  EXPECT_EQ(status, CL_SUCCESS);
  for (unsigned i = 0; i != 3; ++i)
    launchOn(kernel, round.queue, name[1] == 'a');
  EXPECT_EQ(round.cl().clRetainKernel(kernel), CL_SUCCESS);
  EXPECT_EQ(round.cl().clReleaseKernel(kernel), CL_SUCCESS);
  launchOn(kernel, round.queue, name[1] == 'a');
  EXPECT_EQ(round.cl().clReleaseKernel(kernel), CL_SUCCESS);
}

// The first kernel is "sum". The agent is not asked for their number: it would
// create them all, and they could not be released. After a flush the array is
// too small for all of them.
void Application::useAllKernels() {
  std::array<cl_kernel, ordinaryKernels> kernels{};
  if (round.cl().clCreateKernelsInProgram(round.program, ordinaryKernels,
                                          kernels.data(),
                                          nullptr) != CL_SUCCESS) {
    EXPECT_TRUE(round.mayHaveForgotten());
    return;
  }
  launchOn(kernels.front(), round.queue);
  for (cl_kernel kernel : kernels) {
    EXPECT_EQ(round.cl().clReleaseKernel(kernel), CL_SUCCESS);
  }
}

void Application::useOwnProgram(const char *source) {
  cl_program program = createProgram(source);
  EXPECT_EQ(
      round.cl().clBuildProgram(program, 0, nullptr, nullptr, nullptr, nullptr),
      CL_SUCCESS);
  // Only autotuning mode looks for variants if the log says that one spills.
  const bool found = source[0] == 'o' || round.plan.mode == Mode::Autotuning;
  expectKernels(program, found ? 1 : 2, 2);
  cl_kernel kernel = round.cl().clCreateKernel(program, "own", nullptr);
  launchOn(kernel, round.queue);
  EXPECT_EQ(round.cl().clReleaseKernel(kernel), CL_SUCCESS);
  EXPECT_EQ(round.cl().clReleaseProgram(program), CL_SUCCESS);
}

void Application::linkProgram() {
  cl_program program =
      round.cl().clLinkProgram(round.context(), 0, nullptr, nullptr, 0, nullptr,
                               nullptr, nullptr, nullptr);
  expectKernels(program, round.plan.mode == Mode::Autotuning ? 1 : 2, 2);
  cl_kernel kernel = round.cl().clCreateKernel(program, "linked", nullptr);
  launchOn(kernel, round.queue);
  EXPECT_EQ(round.cl().clReleaseKernel(kernel), CL_SUCCESS);
  EXPECT_EQ(round.cl().clReleaseProgram(program), CL_SUCCESS);
}

void Application::useOwnQueue() {
  cl_command_queue queue = createQueue();
  cl_kernel kernel = round.cl().clCreateKernel(round.program, "sum", nullptr);
  launchOn(kernel, queue);
  EXPECT_EQ(round.cl().clReleaseCommandQueue(queue), CL_SUCCESS);
  EXPECT_EQ(round.cl().clReleaseKernel(kernel), CL_SUCCESS);
}

// Releases a buffer while a launch on it may be running, and gives another one
// to another thread, which releases it.
void Application::throwBuffersAway() {
  cl_mem buffer = createBuffer();
  cl_kernel kernel = round.cl().clCreateKernel(round.program, "sum", nullptr);
  set(kernel, 0, buffer);
  set(kernel, 1, cl_uint{7});
  const std::size_t global = 64;
  EXPECT_EQ(round.cl().clEnqueueNDRangeKernel(round.queue, kernel, 1, nullptr,
                                              &global, nullptr, 0, nullptr,
                                              nullptr),
            CL_SUCCESS);
  EXPECT_EQ(round.cl().clReleaseKernel(kernel), CL_SUCCESS);
  const cl_mem other = round.swap(random() % Round::slotCount, buffer);
  if (other) {
    EXPECT_EQ(round.cl().clReleaseMemObject(other), CL_SUCCESS);
  }
}

// Launches the kernel that all threads share. OpenCL allows this as long as no
// thread sets an argument of it.
void Application::launchSharedKernel() {
  const std::array<std::size_t, 2> global{64, 2};
  const std::array<std::size_t, 2> local{4, 1};
  EXPECT_EQ(round.cl().clEnqueueNDRangeKernel(
                round.queue, round.sharedKernel, 2, nullptr, global.data(),
                local.data(), 0, nullptr, nullptr),
            CL_SUCCESS);
}

void Application::askForKernels() {
  expectKernels(round.program, ordinaryKernels, allKernels);
}

// Launches with a factor that a variant of "pair" accepts every other time.
void Application::launchOn(cl_kernel kernel, cl_command_queue queue,
                           bool pair) {
  const auto factor = static_cast<std::uint32_t>(random() % 100);
  const Owned &source = pair ? in : out;
  set(kernel, 0, out.buffer);
  if (pair)
    set(kernel, 1, in.buffer);
  set(kernel, pair ? 2 : 1, cl_uint{factor});
  if (!launch(kernel, queue))
    return;
  for (std::size_t i = 0; i != wordCount; ++i)
    out.words[i] = out.words[i] * 31 + source.words[i] + factor;
}

// Launches after the latest launch. Returns whether this one will run, which
// its event shows: after a flush in autotuning mode nothing runs.
bool Application::launch(cl_kernel kernel, cl_command_queue queue) {
  const std::size_t global = 64;
  const std::size_t local = 4;
  cl_event event = nullptr;
  EXPECT_EQ(round.cl().clEnqueueNDRangeKernel(
                queue, kernel, 1, nullptr, &global,
                random() % 2 == 0 ? &local : nullptr, latest ? 1 : 0,
                latest ? &latest : nullptr, &event),
            CL_SUCCESS);
  if (!event) {
    EXPECT_TRUE(round.mayHaveForgotten());
    return false;
  }
  if (latest) {
    EXPECT_EQ(round.cl().clReleaseEvent(latest), CL_SUCCESS);
  }
  latest = event;
  return true;
}

template <typename Value>
void Application::set(cl_kernel kernel, cl_uint index, const Value &value) {
  EXPECT_EQ(round.cl().clSetKernelArg(kernel, index, sizeof value, &value),
            CL_SUCCESS);
}

cl_mem Application::createBuffer() const {
  cl_int status = CL_INVALID_VALUE;
  cl_mem buffer = round.cl().clCreateBuffer(round.context(), CL_MEM_READ_WRITE,
                                            wordCount * 4, nullptr, &status);
  EXPECT_EQ(status, CL_SUCCESS);
  return buffer;
}

cl_command_queue Application::createQueue() const {
  return round.cl().clCreateCommandQueue(round.context(), nullptr, 0, nullptr);
}

cl_program Application::createProgram(const char *source) const {
  return round.cl().clCreateProgramWithSource(round.context(), 1, &source,
                                              nullptr, nullptr);
}

void Application::expectKernels(cl_program program, std::size_t ordinary,
                                std::size_t all) {
  std::size_t count = 0;
  EXPECT_EQ(round.cl().clGetProgramInfo(program, CL_PROGRAM_NUM_KERNELS,
                                        sizeof count, &count, nullptr),
            CL_SUCCESS);
  std::array<char, 256> names{};
  EXPECT_EQ(round.cl().clGetProgramInfo(program, CL_PROGRAM_KERNEL_NAMES,
                                        names.size(), names.data(), nullptr),
            CL_SUCCESS);
  const std::string text = names.data();
  const bool hidden = text.find("_coarsed_") == std::string::npos;
  if (round.mayHaveForgotten()) {
    EXPECT_THAT(count, testing::AnyOf(ordinary, all));
    return;
  }
  EXPECT_EQ(count, ordinary);
  EXPECT_EQ(hidden, ordinary != all) << text;
}

void Application::waitForLatest() {
  if (latest) {
    EXPECT_EQ(round.cl().clWaitForEvents(1, &latest), CL_SUCCESS);
  }
}

void Application::expectContents(const Owned &owned) {
  std::vector<std::uint32_t> words(wordCount);
  cl_event over = nullptr;
  EXPECT_EQ(round.cl().clEnqueueReadBuffer(round.queue, owned.buffer, CL_FALSE,
                                           0, wordCount * 4, words.data(), 0,
                                           nullptr, &over),
            CL_SUCCESS);
  EXPECT_EQ(round.cl().clWaitForEvents(1, &over), CL_SUCCESS);
  EXPECT_EQ(words, owned.words);
  EXPECT_EQ(round.cl().clReleaseEvent(over), CL_SUCCESS);
}
