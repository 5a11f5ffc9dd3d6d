// Compares an autotuned launch with the sum of what it must do: the runs of all
// versions, and the saves and restores of the buffers. With the layer the agent
// does these; without the layer the program does them itself.

#include "bench/opencl/TunedKernel.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <numeric>
#include <string>
#include <thread>

using namespace corvane::bench;

static constexpr std::size_t launches = 20;
static constexpr std::size_t versions = TunedKernel::variantCount + 1;

// The times in the raw timing log, in seconds.
static std::vector<double> loggedTimes(const std::string &path) {
  std::ifstream log(path);
  std::vector<double> times;
  std::string line;
  std::getline(log, line);
  while (std::getline(log, line))
    times.push_back(std::stod(line.substr(line.rfind(',') + 1)) * 1e-6);
  return times;
}

// Rows are written a moment after the commands are over.
static std::vector<double> waitForTimes(const std::string &path,
                                        std::size_t count) {
  std::vector<double> times = loggedTimes(path);
  for (int i = 0; i != 1000 && times.size() < count; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    times = loggedTimes(path);
  }
  return times;
}

static std::vector<Runs> launchByAgent(const TunedKernel &kernel,
                                       const std::string &log) {
  using Clock = std::chrono::steady_clock;
  kernel.launch();
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  const std::size_t before = loggedTimes(log).size();
  std::vector<Runs> runs(launches);
  for (Runs &run : runs) {
    const Clock::time_point start = Clock::now();
    kernel.launch();
    run.wallSeconds =
        std::chrono::duration<double>(Clock::now() - start).count();
  }
  const std::vector<double> times =
      waitForTimes(log, before + launches * versions);
  if (times.size() != before + launches * versions)
    examples::fail("rows are missing in " + log);
  auto next = times.begin() + static_cast<std::ptrdiff_t>(before);
  for (Runs &run : runs) {
    run.kernelSeconds = std::accumulate(next, next + versions, 0.0);
    next += versions;
  }
  return runs;
}

static std::vector<Runs> launchByHand(TunedKernel &kernel) {
  std::vector<Runs> runs(launches);
  for (Runs &run : runs)
    run = kernel.launchByHand();
  return runs;
}

static double medianOf(std::vector<double> values) {
  const auto middle =
      values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

static void tune(benchmark::State &state, double seconds) {
  const char *directory = std::getenv("CORVANE_AUTOTUNE");
  TunedKernel kernel(seconds);
  for (auto _ : state) {
    const double copies = kernel.copySeconds();
    std::vector<double> walls;
    std::vector<double> kernels;
    std::vector<double> ratios;
    for (const Runs &run :
         directory
             ? launchByAgent(kernel, std::string(directory) + "/.auto.csv")
             : launchByHand(kernel)) {
      walls.push_back(run.wallSeconds);
      kernels.push_back(run.kernelSeconds);
      ratios.push_back(run.wallSeconds / (run.kernelSeconds + copies));
    }
    state.SetIterationTime(medianOf(walls));
    state.counters["kernelsMs"] = medianOf(kernels) * 1e3;
    state.counters["copiesMs"] = copies * 1e3;
    state.counters["ratio"] = medianOf(ratios);
  }
}

int main(int argc, char **argv) {
  examples::setProgramName("tuning_bench");
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv))
    return 1;
  for (const int microseconds : {200, 10'000})
    benchmark::RegisterBenchmark(
        ("tuning/us:" + std::to_string(microseconds)).c_str(),
        [=](benchmark::State &state) { tune(state, microseconds * 1e-6); })
        ->UseManualTime()
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
