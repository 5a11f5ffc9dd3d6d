// Enqueues the versions of one kernel.

#include "bench/opencl/TunedKernel.h"

#include <algorithm>
#include <chrono>
#include <cstring>

using namespace corvane::bench;

static const char *const source = R"(
void work(global float *x, global float *y, uint rounds, uint item) {
  float value = x[item];
  for (uint i = 0; i != rounds; ++i)
    value = value * 0.999f + 0.001f;
  y[item] = value;
}
void several(global float *x, global float *y, uint rounds, uint factor) {
  for (uint i = 0; i != factor; ++i)
    work(x, y, rounds, get_global_id(0) * factor + i);
}
kernel void k(global float *x, global float *y, uint rounds) {
  several(x, y, rounds, 1);
}
kernel void k_coarsed_g0S2(global float *x, global float *y, uint rounds) {
  several(x, y, rounds, 2);
}
kernel void k_coarsed_g0S4(global float *x, global float *y, uint rounds) {
  several(x, y, rounds, 4);
}
kernel void k_coarsed_g0S8(global float *x, global float *y, uint rounds) {
  several(x, y, rounds, 8);
}
)";

using Clock = std::chrono::steady_clock;

static constexpr std::size_t items = TunedKernel::bufferSize / sizeof(float);
static constexpr std::size_t factors[] = {2, 4, 8, 1};

static double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

static double secondsOf(const Event &event) {
  cl_ulong start = 0;
  cl_ulong end = 0;
  check(clGetEventProfilingInfo(event.get(), CL_PROFILING_COMMAND_START,
                                sizeof start, &start, nullptr),
        "clGetEventProfilingInfo");
  check(clGetEventProfilingInfo(event.get(), CL_PROFILING_COMMAND_END,
                                sizeof end, &end, nullptr),
        "clGetEventProfilingInfo");
  return static_cast<double>(end - start) * 1e-9;
}

TunedKernel::TunedKernel(double seconds) : session(source) {
  for (const char *name :
       {"k_coarsed_g0S2", "k_coarsed_g0S4", "k_coarsed_g0S8", "k"})
    versions.push_back(session.kernel(name));
  for (std::size_t i = 0; i != bufferCount; ++i) {
    buffers.push_back(session.buffer(bufferSize));
    hostCopies.emplace_back(bufferSize);
  }
  for (const Kernel &version : versions)
    for (cl_uint i = 0; i != bufferCount; ++i) {
      cl_mem handle = buffers[i].get();
      setArgument(version, i, handle);
    }

  setRounds(1);
  launchByHand(); // compiles the kernels
  calibrate(seconds);
}

// Takes the shortest of some runs: other programs can only make a run longer.
void TunedKernel::calibrate(double seconds) {
  double rounds = 100.0;
  for (int step = 0; step != 3; ++step) {
    setRounds(static_cast<cl_uint>(rounds));
    double shortest = launchByHand().kernelSeconds;
    for (int i = 0; i != 5; ++i)
      shortest = std::min(shortest, launchByHand().kernelSeconds);
    const double ofOne = shortest / static_cast<double>(versions.size());
    rounds = std::max(1.0, rounds * seconds / ofOne);
  }
  setRounds(static_cast<cl_uint>(rounds));
}

void TunedKernel::setRounds(cl_uint rounds) const {
  for (const Kernel &version : versions)
    setArgument(version, bufferCount, rounds);
}

Event TunedKernel::enqueue(const Kernel &kernel, std::size_t count,
                           const Event &after) const {
  const std::size_t local = 64;
  cl_event event = nullptr;
  cl_event waitFor = after.get();
  check(clEnqueueNDRangeKernel(session.queue(), kernel.get(), 1, nullptr,
                               &count, &local, waitFor ? 1 : 0,
                               waitFor ? &waitFor : nullptr, &event),
        "clEnqueueNDRangeKernel");
  return Event(event);
}

Event TunedKernel::transfer(bool save, std::size_t buffer, const Event &after) {
  cl_event event = nullptr;
  cl_event waitFor = after.get();
  const cl_uint waitCount = waitFor ? 1 : 0;
  const cl_event *waitList = waitFor ? &waitFor : nullptr;
  char *host = hostCopies[buffer].data();
  check(save ? clEnqueueReadBuffer(session.queue(), buffers[buffer].get(),
                                   CL_FALSE, 0, bufferSize, host, waitCount,
                                   waitList, &event)
             : clEnqueueWriteBuffer(session.queue(), buffers[buffer].get(),
                                    CL_FALSE, 0, bufferSize, host, waitCount,
                                    waitList, &event),
        "clEnqueueReadBuffer or clEnqueueWriteBuffer");
  return Event(event);
}

void TunedKernel::launch() const {
  enqueue(versions.back(), items, nullptr);
  check(clFinish(session.queue()), "clFinish");
}

Runs TunedKernel::launchByHand() {
  std::vector<Event> runs;
  const Clock::time_point start = Clock::now();
  Event last;
  for (std::size_t version = 0; version != versions.size(); ++version) {
    const bool isVariant = version != variantCount;
    for (std::size_t i = 0; isVariant && i != bufferCount; ++i)
      last = transfer(true, i, last);
    runs.push_back(enqueue(versions[version], items / factors[version], last));
    check(clRetainEvent(runs.back().get()), "clRetainEvent");
    last.reset(runs.back().get());
    for (std::size_t i = 0; isVariant && i != bufferCount; ++i)
      last = transfer(false, i, last);
  }
  check(clFinish(session.queue()), "clFinish");

  Runs result;
  result.wallSeconds = secondsSince(start);
  for (const Event &run : runs)
    result.kernelSeconds += secondsOf(run);
  return result;
}

// On a device that uses the host's memory a transfer is a copy. So this copies
// as many bytes between two arrays, which are in the cache if they fit.
double TunedKernel::copySeconds() {
  constexpr std::size_t copies = 2 * variantCount * bufferCount;
  std::vector<std::vector<char>> places(bufferCount,
                                        std::vector<char>(bufferSize));
  std::vector<double> times;
  for (int round = 0; round != 101; ++round) {
    const Clock::time_point start = Clock::now();
    for (std::size_t i = 0; i != copies; ++i) {
      std::vector<char> &here = hostCopies[i % bufferCount];
      std::vector<char> &there = places[i % bufferCount];
      const bool save = i / bufferCount % 2 == 0;
      std::memcpy(save ? here.data() : there.data(),
                  save ? there.data() : here.data(), bufferSize);
    }
    times.push_back(secondsSince(start));
  }
  std::nth_element(times.begin(), times.begin() + 50, times.end());
  return times[50];
}
