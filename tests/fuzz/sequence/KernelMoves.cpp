// The moves with kernels: creating one or all, setting arguments, releasing.

#include "tests/fuzz/sequence/Play.h"

#include <algorithm>

using namespace corvane;
using namespace corvane::fuzz;

// Adds a kernel, with the number of arguments that the runtime tells.
static void hold(Play &play, cl_kernel handle) {
  HeldKernel kernel;
  kernel.handle = handle;
  std::array<char, 1024> name{};
  const auto ask = play.recorder.below().clGetKernelInfo;
  ask(handle, CL_KERNEL_FUNCTION_NAME, name.size(), name.data(), nullptr);
  kernel.argumentCount = Play::argumentCountOf(name.data());
  play.kernels.push_back(kernel);
}

void corvane::fuzz::createKernel(Play &play) {
  const cl_program program = play.pickHandle(play.programs);
  const std::string name = play.kernelName();
  cl_int status = 1;
  cl_int *wanted = play.input.flag() ? &status : nullptr;
  const cl_kernel kernel =
      play.cl().clCreateKernel(program, name.c_str(), wanted);

  const auto made = play.recorder.heard("clCreateKernel");
  check(!made.empty() && made.front().handle == kernel,
        "the application gets the kernel that it asked for");
  check(!wanted || status == made.front().status,
        "the runtime's status is handed out");
  if (kernel)
    hold(play, kernel);
}

// Counts kernels that the agent has had created to read their names, and
// released.
static std::size_t givenBack(const Play &play,
                             const std::vector<cl_kernel> &made) {
  const auto released = play.recorder.heard("clReleaseKernel");
  return made.size() - std::min(made.size(), released.size());
}

void corvane::fuzz::createKernelsInProgram(Play &play) {
  const cl_program program = play.pickHandle(play.programs);
  // The array is large enough for all kernels, whatever size the application
  // claims: the agent does not treat that size as OpenCL says.
  std::vector<cl_kernel> kernels(64);
  const bool wanted = play.input.flag();
  cl_uint count = 99;
  const cl_int status = play.cl().clCreateKernelsInProgram(
      program, static_cast<cl_uint>(play.input.below(9)),
      wanted ? kernels.data() : nullptr, play.input.flag() ? &count : nullptr);

  const auto end = std::find(kernels.begin(), kernels.end(), nullptr);
  const auto filled = static_cast<std::size_t>(end - kernels.begin());
  const auto calls = play.recorder.heard("clCreateKernelsInProgram");
  if (calls.empty()) {
    check(status == CL_INVALID_PROGRAM, "an unknown program is refused");
    return;
  }
  check(status != CL_SUCCESS || count == 99 || !wanted || play.failing ||
            count == filled,
        "as many kernels are counted as are handed out");
  if (play.hasState && !play.failing && wanted)
    check(filled == givenBack(play, calls.back().made),
          "what is not handed out is given back");
  // Without an array for their handles the kernels can never be released.
  play.kernelsLost |= !wanted && !calls.back().made.empty();
  for (auto kernel = kernels.begin(); kernel != end; ++kernel)
    hold(play, *kernel);
}

void corvane::fuzz::retainKernel(Play &play) {
  HeldKernel *kernel = play.pick(play.kernels);
  if (kernel && play.cl().clRetainKernel(kernel->handle) == CL_SUCCESS)
    ++kernel->references;
}

void corvane::fuzz::releaseKernel(Play &play) {
  HeldKernel *kernel = play.pick(play.kernels);
  if (!kernel)
    return;
  const cl_int status = play.cl().clReleaseKernel(kernel->handle);
  check(status == play.recorder.heard("clReleaseKernel").front().status,
        "the runtime's status is returned");
  if (status == CL_SUCCESS && --kernel->references == 0)
    Play::drop(play.kernels, kernel);
}

static void set(Play &play, HeldKernel &kernel, cl_uint index, std::size_t size,
                const void *value, cl_mem buffer) {
  play.recorder.forget();
  const cl_int status =
      play.cl().clSetKernelArg(kernel.handle, index, size, value);
  check(status == play.onlyCall("clSetKernelArg").status,
        "a setting is passed on once");
  if (status != CL_SUCCESS)
    return;
  kernel.buffers[index] = buffer;
  kernel.pointsNowhere = std::any_of(
      kernel.buffers.begin(), kernel.buffers.end(),
      [&](const auto &argument) { return play.isGone(argument.second); });
}

static void setBuffer(Play &play, HeldKernel &kernel, cl_uint index) {
  const HeldBuffer *buffer = play.pick(play.buffers);
  const cl_mem handle = buffer ? buffer->handle : nullptr;
  set(play, kernel, index, sizeof handle, &handle, handle);
}

void corvane::fuzz::setArgument(Play &play) {
  HeldKernel *kernel = play.pick(play.kernels);
  if (!kernel)
    return;
  const auto index = static_cast<cl_uint>(play.input.below(6));
  if (play.input.flag())
    return setBuffer(play, *kernel, index);
  constexpr std::size_t sizes[] = {4, 8, 16, 1, 2, 3, 0, 200};
  const std::size_t size = sizes[play.input.below(std::size(sizes))];
  std::string value(play.input.bytes(size));
  value.resize(size);
  // Eight bytes that are equal to a buffer's handle are that buffer.
  if (size == sizeof(cl_mem))
    value[0] = '\1';
  set(play, *kernel, index, size,
      play.input.below(8) == 1 ? nullptr : value.data(), nullptr);
}

void corvane::fuzz::setAllArguments(Play &play) {
  HeldKernel *kernel = play.pick(play.kernels);
  if (!kernel)
    return;
  for (cl_uint i = 0; i != kernel->argumentCount; ++i) {
    const std::uint32_t number = play.input.byte();
    if (play.input.flag())
      setBuffer(play, *kernel, i);
    else
      set(play, *kernel, i, sizeof number, &number, nullptr);
  }
}

// Makes a program, its kernels and buffers, as every application does first.
void corvane::fuzz::startWithVariants(Play &play) {
  const std::string base = play.baseName();
  auto script = play.runtime.addProgram();
  script.kernel(base, Play::argumentCountOf(base), Play::runKernel);
  for (std::size_t i = play.input.below(4); i != 0; --i) {
    const std::string variant = base + "_coarsed_" + play.specText();
    script.kernel(variant, Play::argumentCountOf(variant), Play::runKernel);
  }
  play.programs.push_back({script});
  play.cl().clBuildProgram(script, 0, nullptr, nullptr, nullptr, nullptr);
  createBuffer(play);
  const cl_kernel kernel =
      play.cl().clCreateKernel(script, base.c_str(), nullptr);
  if (!kernel)
    return;
  hold(play, kernel);
  for (cl_uint i = 0; i != play.kernels.back().argumentCount; ++i)
    setBuffer(play, play.kernels.back(), i);
}
