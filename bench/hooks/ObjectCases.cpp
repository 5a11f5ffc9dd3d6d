// Creation and release of kernels, with their variants, and of buffers.

#include "bench/hooks/Application.h"
#include "bench/hooks/Cases.h"
#include "bench/null/NullRuntime.h"

#include <array>
#include <sstream>

using namespace corvane::bench;

static void useKernel(benchmark::State &state, Way way, std::size_t variants) {
  const Program program(kernelWithVariants(variants));
  const auto &table = way == Way::Agent ? hooked() : bare();
  const auto create = table.clCreateKernel;
  const auto release = table.clReleaseKernel;
  for (auto _ : state) {
    cl_int status = CL_SUCCESS;
    cl_kernel kernel = create(program, "k", &status);
    benchmark::DoNotOptimize(kernel);
    release(kernel);
  }
}

static std::vector<std::string> wordsOf(const std::string &text) {
  std::istringstream stream(text);
  std::vector<std::string> words;
  for (std::string word; stream >> word;)
    words.push_back(word);
  return words;
}

// Makes the calls that a kernel needs, without the agent: queries of name and
// reference count, creation and release of the kernel and its variants.
static void makeKernelCalls(benchmark::State &state, std::size_t variants) {
  const std::string names = kernelWithVariants(variants);
  const std::vector<std::string> words = wordsOf(names);
  const Program program(names);
  const auto create = bare().clCreateKernel;
  const auto ask = bare().clGetKernelInfo;
  const auto release = bare().clReleaseKernel;
  std::array<char, 1024> name{};
  std::array<cl_kernel, 17> kernels{};
  for (auto _ : state) {
    cl_int status = CL_SUCCESS;
    for (std::size_t i = 0; i != words.size(); ++i)
      kernels[i] = create(program, words[i].c_str(), &status);
    ask(kernels[0], CL_KERNEL_FUNCTION_NAME, name.size(), name.data(), nullptr);
    cl_uint count = 0;
    ask(kernels[0], CL_KERNEL_REFERENCE_COUNT, sizeof count, &count, nullptr);
    benchmark::DoNotOptimize(count);
    for (std::size_t i = 0; i != words.size(); ++i)
      release(kernels[i]);
  }
}

static void useBuffer(benchmark::State &state, Way way) {
  const auto &table = way == Way::Agent ? hooked() : bare();
  const auto create = table.clCreateBuffer;
  const auto release = table.clReleaseMemObject;
  for (auto _ : state) {
    cl_int status = CL_SUCCESS;
    cl_mem buffer = create(nullptr, CL_MEM_READ_WRITE, 4096, nullptr, &status);
    benchmark::DoNotOptimize(buffer);
    release(buffer);
  }
}

static void CL_CALLBACK forget(cl_mem, void *area) { std::free(area); }

static void makeBufferCalls(benchmark::State &state) {
  const auto create = bare().clCreateBuffer;
  const auto watch = bare().clSetMemObjectDestructorCallback;
  const auto release = bare().clReleaseMemObject;
  for (auto _ : state) {
    cl_int status = CL_SUCCESS;
    cl_mem buffer = create(nullptr, CL_MEM_READ_WRITE, 4096, nullptr, &status);
    watch(buffer, forget, std::malloc(4096));
    release(buffer);
  }
}

void corvane::bench::addObjectCases() {
  for (const std::size_t variants : {0, 1, 4, 16}) {
    const std::string name =
        "clCreateKernel+release/variants:" + std::to_string(variants) + "/";
    for (const Way way : {Way::Runtime, Way::Agent})
      add(name + nameOf(way),
          [=](benchmark::State &state) { useKernel(state, way, variants); });
    add(name + "calls",
        [=](benchmark::State &state) { makeKernelCalls(state, variants); });
  }
  for (const Way way : {Way::Runtime, Way::Agent})
    add(std::string("clCreateBuffer+destruction/") + nameOf(way),
        [=](benchmark::State &state) { useBuffer(state, way); });
  add("clCreateBuffer+destruction/calls", makeBufferCalls);
}
