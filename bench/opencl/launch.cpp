// Measures calls of an ordinary program on a real runtime. Run once without and
// once with the layer, it shows what the layer and the agent cost.

#include "bench/opencl/Session.h"

#include <benchmark/benchmark.h>

#include <chrono>

using namespace corvane::bench;

static const char *const source = R"(
kernel void plain(global uint *x, uint step) {
  x[get_global_id(0)] += step;
}
kernel void tuned(global uint *x, uint step) {
  x[get_global_id(0)] += step;
}
kernel void tuned_coarsed_g0S1(global uint *x, uint step) {
  x[get_global_id(0)] += step;
}
)";

static constexpr std::size_t globalSize = 64;

namespace {
/// A kernel that is ready to be launched.
struct Launchable {
  Session session{source};
  Kernel kernel;
  Buffer x = session.buffer(globalSize * sizeof(cl_uint));

  explicit Launchable(const char *name) : kernel(session.kernel(name)) {
    cl_mem handle = x.get();
    setArgument(kernel, 0, handle);
    setArgument(kernel, 1, cl_uint{1});
    // Many runtimes compile a kernel when it is launched for the first time.
    launch();
    finish();
  }

  void launch() const {
    check(clEnqueueNDRangeKernel(session.queue(), kernel.get(), 1, nullptr,
                                 &globalSize, &globalSize, 0, nullptr, nullptr),
          "clEnqueueNDRangeKernel");
  }
  void finish() const { check(clFinish(session.queue()), "clFinish"); }
};
} // namespace

static void setAnArgument(benchmark::State &state, const char *name) {
  const Launchable it(name);
  cl_uint value = 0;
  for (auto _ : state)
    setArgument(it.kernel, 1, ++value);
}

static void launchAndWait(benchmark::State &state, const char *name) {
  const Launchable it(name);
  for (auto _ : state) {
    it.launch();
    it.finish();
  }
}

static void launchAlone(benchmark::State &state, const char *name) {
  using Clock = std::chrono::steady_clock;
  const Launchable it(name);
  for (auto _ : state) {
    const Clock::time_point start = Clock::now();
    it.launch();
    const Clock::time_point end = Clock::now();
    it.finish();
    state.SetIterationTime(std::chrono::duration<double>(end - start).count());
  }
}

static void createKernel(benchmark::State &state, const char *name) {
  const Session session(source);
  for (auto _ : state)
    benchmark::DoNotOptimize(session.kernel(name));
}

int main(int argc, char **argv) {
  examples::setProgramName("launch_bench");
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv))
    return 1;
  for (const char *name : {"plain", "tuned"}) {
    const auto add = [name](const std::string &what, auto run) {
      return benchmark::RegisterBenchmark(
          (what + "/" + name).c_str(),
          [=](benchmark::State &state) { run(state, name); });
    };
    add("clSetKernelArg", setAnArgument)->UseRealTime();
    add("launch", launchAlone)->UseManualTime();
    add("launch+clFinish", launchAndWait)->UseRealTime();
    add("clCreateKernel+release", createKernel)->UseRealTime();
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
