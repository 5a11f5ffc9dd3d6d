// The cost of a hooked call beside the same call straight to the runtime.

#include "bench/NullRuntime.h"

#include <benchmark/benchmark.h>

#include <cstdint>

using namespace corvane;
using namespace corvane::bench;

namespace {
/// Which of the two tables a benchmark calls through.
enum class Through { Runtime, Agent };
} // namespace

static const DispatchTable &table(const NullRuntime &runtime, Through through) {
  return through == Through::Agent ? runtime.hooked() : runtime.bare();
}

static cl_kernel create(const NullRuntime &runtime, const char *name) {
  cl_int status = CL_SUCCESS;
  return runtime.hooked().clCreateKernel(runtime.program(), name, &status);
}

static void setKernelArg(benchmark::State &state, Through through,
                         const std::vector<std::string> &kernels) {
  const NullRuntime runtime(kernels);
  cl_kernel kernel = create(runtime, "k");
  const auto set = table(runtime, through).clSetKernelArg;
  std::uint32_t value = 0;
  for (auto _ : state) {
    ++value;
    benchmark::DoNotOptimize(set(kernel, 0, sizeof value, &value));
  }
  runtime.hooked().clReleaseKernel(kernel);
}

static void launch(benchmark::State &state, Through through,
                   const std::vector<std::string> &kernels) {
  const NullRuntime runtime(kernels);
  cl_kernel kernel = create(runtime, "k");
  const auto enqueue = table(runtime, through).clEnqueueNDRangeKernel;
  const std::size_t global = 1024;
  const std::size_t local = 64;
  for (auto _ : state)
    benchmark::DoNotOptimize(enqueue(runtime.queue(), kernel, 1, nullptr,
                                     &global, &local, 0, nullptr, nullptr));
  runtime.hooked().clReleaseKernel(kernel);
}

static const std::vector<std::string> &plain() {
  static const std::vector<std::string> names{"k"};
  return names;
}

static const std::vector<std::string> &withVariant() {
  static const std::vector<std::string> names{"k", "k_coarsed_g0S4"};
  return names;
}

int main(int argc, char **argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv))
    return 1;
  const auto pair = [](const std::string &name, auto function,
                       const std::vector<std::string> &kernels) {
    benchmark::RegisterBenchmark((name + "/runtime").c_str(), function,
                                 Through::Runtime, kernels);
    benchmark::RegisterBenchmark((name + "/agent").c_str(), function,
                                 Through::Agent, kernels);
  };
  pair("clSetKernelArg/no variants", setKernelArg, plain());
  pair("clSetKernelArg/1 variant", setKernelArg, withVariant());
  pair("clEnqueueNDRangeKernel/no variants", launch, plain());
  pair("clEnqueueNDRangeKernel/1 variant", launch, withVariant());
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
