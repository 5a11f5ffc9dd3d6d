// Builds of programs, and queries about them.

#include "bench/hooks/Application.h"
#include "bench/hooks/Cases.h"
#include "bench/null/NullRuntime.h"

#include <array>

using namespace corvane::bench;

// Of every five kernels, four are variants of the first.
static std::string kernelNames(std::size_t count) {
  std::string names;
  std::string base;
  for (std::size_t i = 0; i != count; ++i) {
    if (i % 5 == 0)
      base = "kernel" + std::to_string(i);
    names += base;
    if (i % 5 != 0)
      names += "_coarsed_g0S" + std::to_string(i % 5 + 1);
    names += ' ';
  }
  return names;
}

// The agent drops its record at the release, but the program still exists.
static void build(benchmark::State &state, Way way, std::size_t kernels) {
  const Program program(kernelNames(kernels));
  const auto &table = way == Way::Agent ? hooked() : bare();
  for (auto _ : state) {
    bare().clRetainProgram(program);
    table.clBuildProgram(program, 0, nullptr, nullptr, nullptr, nullptr);
    table.clReleaseProgram(program);
  }
}

static void makeBuildCalls(benchmark::State &state, std::size_t kernels) {
  const Program program(kernelNames(kernels));
  const auto &runtime = bare();
  std::vector<cl_kernel> created(4096);
  std::array<char, 1024> name{};
  for (auto _ : state) {
    runtime.clRetainProgram(program);
    runtime.clBuildProgram(program, 0, nullptr, nullptr, nullptr, nullptr);
    cl_uint count = 0;
    cl_device_id device = nullptr;
    std::size_t logSize = 0;
    runtime.clGetProgramInfo(program, CL_PROGRAM_NUM_DEVICES, sizeof count,
                             &count, nullptr);
    runtime.clGetProgramInfo(program, CL_PROGRAM_DEVICES, sizeof device,
                             &device, nullptr);
    runtime.clGetProgramBuildInfo(program, device, CL_PROGRAM_BUILD_LOG, 0,
                                  nullptr, &logSize);
    runtime.clCreateKernelsInProgram(program, 4096, created.data(), &count);
    for (cl_uint i = 0; i != count; ++i) {
      runtime.clGetKernelInfo(created[i], CL_KERNEL_FUNCTION_NAME, name.size(),
                              name.data(), nullptr);
      runtime.clReleaseKernel(created[i]);
    }
    runtime.clReleaseProgram(program);
  }
}

static void ask(benchmark::State &state, Way way, cl_program_info what) {
  const Program program(kernelWithVariants(4));
  const auto &table = way == Way::Agent ? hooked() : bare();
  const auto getInfo = table.clGetProgramInfo;
  std::array<char, 1024> answer{};
  for (auto _ : state)
    benchmark::DoNotOptimize(
        getInfo(program, what, answer.size(), answer.data(), nullptr));
}

void corvane::bench::addProgramCases() {
  for (const std::size_t kernels : {10, 100, 1000}) {
    const std::string name =
        "clBuildProgram/kernels:" + std::to_string(kernels) + "/";
    for (const Way way : {Way::Runtime, Way::Agent})
      add(name + nameOf(way),
          [=](benchmark::State &state) { build(state, way, kernels); });
    add(name + "calls",
        [=](benchmark::State &state) { makeBuildCalls(state, kernels); });
  }
  for (const Way way : {Way::Runtime, Way::Agent}) {
    add(std::string("clGetProgramInfo/count/") + nameOf(way),
        [=](benchmark::State &state) {
          ask(state, way, CL_PROGRAM_NUM_KERNELS);
        });
    add(std::string("clGetProgramInfo/names/") + nameOf(way),
        [=](benchmark::State &state) {
          ask(state, way, CL_PROGRAM_KERNEL_NAMES);
        });
  }
}
