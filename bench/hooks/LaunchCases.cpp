// clEnqueueNDRangeKernel, with variants that reject and variants that accept.

#include "bench/hooks/Application.h"
#include "bench/hooks/Cases.h"
#include "bench/null/NullRuntime.h"

#include <array>
#include <cstdlib>

using namespace corvane::bench;

namespace {
/// Which variant, in the order in which the agent asks them, accepts.
enum class Accepts { None, First, Last };

struct Case {
  Way way = Way::Agent;
  std::size_t variants = 0;
  Accepts accepts = Accepts::None;
  bool changed = false;  ///< an argument, before each launch
  bool newSizes = false; ///< each launch has others than the one before
  bool known = true;     ///< to the agent
};

/// Makes launches of one kernel.
class Launcher {
public:
  Launcher(cl_kernel ofKernel, Way way)
      : kernel(ofKernel), launch(launcherBy(way)) {}

  cl_int operator()(std::size_t global) const {
    return launch(nullptr, kernel, 1, nullptr, &global, &localSize, 0, nullptr,
                  nullptr);
  }

private:
  cl_kernel kernel;
  decltype(corvane::DispatchTable::clEnqueueNDRangeKernel) launch;
};
} // namespace

static cl_kernel launched(const Launcher &launch, std::size_t global) {
  launch(global);
  return lastLaunched();
}

// The order of the variants follows from handles that only the agent has. So it
// is found by launches that two variants accept: the one that runs comes first.
static std::size_t findVariant(const Launcher &launch, const Case &of) {
  std::size_t found = 0;
  for (std::size_t i = 1; i != of.variants; ++i) {
    const cl_kernel winner = launched(launch, sizeFor(found, i));
    const bool isFirst = winner == launched(launch, sizeFor(i));
    if (isFirst == (of.accepts == Accepts::First))
      found = i;
  }
  return found;
}

static void setArguments(cl_kernel kernel) {
  const std::array<cl_int, 2> values{};
  for (cl_uint i = 0; i != values.size(); ++i)
    hooked().clSetKernelArg(kernel, i, sizeof(cl_int), &values[i]);
}

static void launchKernel(benchmark::State &state, const Case &what) {
  const Program program(kernelWithVariants(what.variants));
  const Kernel created(program, "k");
  // A kernel that the agent has not seen being created.
  cl_int status = CL_SUCCESS;
  cl_kernel kernel =
      what.known ? created : bare().clCreateKernel(program, "k", &status);
  setArguments(kernel);

  const std::size_t global =
      what.accepts == Accepts::None
          ? sizeForNone
          : sizeFor(findVariant(Launcher(kernel, Way::Agent), what));
  const std::array<std::size_t, 2> sizes = {
      global, what.newSizes ? sameAnswerFor(global) : global};
  const Launcher launch(kernel, what.way);
  const auto set = setterBy(what.way);
  cl_uint value = 0;
  for (auto _ : state) {
    ++value;
    if (what.changed)
      set(kernel, 0, sizeof value, &value);
    benchmark::DoNotOptimize(launch(sizes[value % 2]));
  }
  // In autotuning mode the kernel itself always runs last.
  if (what.way == Way::Agent && !std::getenv("CORVANE_AUTOTUNE") &&
      (lastLaunched() == kernel) != (what.accepts == Accepts::None))
    state.SkipWithError("not the kernel that should have run");
  if (!what.known)
    bare().clReleaseKernel(kernel);
}

// Makes the calls to the runtime that a launch of a variant needs.
static void makeCalls(benchmark::State &state, bool changed) {
  const Program program(kernelWithVariants(1));
  const Kernel kernel(program, "k");
  const Kernel variant(program, "k_coarsed_g0S2");
  const auto set = bare().clSetKernelArg;
  const auto ask = bare().clGetKernelInfo;
  const std::array<cl_uint, 4> groups{};
  const Launcher launch(variant, Way::Runtime);
  cl_int value = 0;
  for (auto _ : state) {
    if (changed) {
      ++value;
      set(kernel, 0, sizeof value, &value);
      set(variant, 0, sizeof value, &value);
      set(variant, 1, sizeof value, &value);
    }
    cl_uint count = 0;
    ask(kernel, CL_KERNEL_NUM_ARGS, sizeof count, &count, nullptr);
    ask(variant, CL_KERNEL_NUM_ARGS, sizeof count, &count, nullptr);
    benchmark::DoNotOptimize(count);
    set(variant, 2, sizeof groups, groups.data());
    benchmark::DoNotOptimize(launch(sizeForNone));
  }
}

static void lookUpVariable(benchmark::State &state) {
  for (auto _ : state)
    benchmark::DoNotOptimize(std::getenv("CORVANE_DUMP_LOG"));
}

static std::string textOf(const Case &what) {
  static constexpr std::array<const char *, 3> words = {"none", "first",
                                                        "last"};
  if (!what.known)
    return "unknown-kernel";
  return "variants:" + std::to_string(what.variants) +
         "/accepts:" + words.at(static_cast<std::size_t>(what.accepts)) +
         (what.changed    ? "/changed"
          : what.newSizes ? "/new-sizes"
                          : "/unchanged");
}

static void addCase(const Case &what) {
  add("clEnqueueNDRangeKernel/" + textOf(what) + "/" + nameOf(what.way),
      [=](benchmark::State &state) { launchKernel(state, what); });
}

void corvane::bench::addLaunchCases() {
  for (const Way way : {Way::Runtime, Way::Pass, Way::Lock, Way::Agent})
    for (const bool changed : {false, true})
      addCase({way, 0, Accepts::None, changed});
  addCase({Way::Agent, 0, Accepts::None, false, false, false});
  for (const std::size_t variants : {0, 1, 16})
    addCase({Way::Agent, variants, Accepts::None, false, true});
  for (const std::size_t variants : {1, 16})
    addCase({Way::Agent, variants, Accepts::First, false, true});
  addCase({Way::Agent, 16, Accepts::Last, false, true});
  for (const bool changed : {false, true}) {
    for (const std::size_t variants : {1, 4, 16})
      for (const Accepts accepts : {Accepts::None, Accepts::First})
        addCase({Way::Agent, variants, accepts, changed});
    for (const std::size_t variants : {4, 16})
      addCase({Way::Agent, variants, Accepts::Last, changed});
    add(std::string("clEnqueueNDRangeKernel/variants:1/accepts:first/") +
            (changed ? "changed" : "unchanged") + "/calls",
        [=](benchmark::State &state) { makeCalls(state, changed); });
  }
  add("getenv/env", lookUpVariable);
}
