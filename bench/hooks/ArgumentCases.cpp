// clSetKernelArg, on kernels without and with variants, for values of a few
// sizes.

#include "bench/hooks/Application.h"
#include "bench/hooks/Cases.h"

#include <array>

using namespace corvane::bench;

static void setArgument(benchmark::State &state, Way way, std::size_t variants,
                        std::size_t size) {
  const Program program(kernelWithVariants(variants));
  const Kernel kernel(program, "k");
  const auto set = setterBy(way);
  std::array<unsigned char, 64> value{};
  for (auto _ : state) {
    ++value[0];
    benchmark::DoNotOptimize(set(kernel, 0, size, value.data()));
  }
}

static void addCase(Way way, std::size_t variants, std::size_t size) {
  const std::string name =
      "clSetKernelArg/variants:" + std::to_string(variants) +
      "/bytes:" + std::to_string(size) + "/" + nameOf(way);
  add(name, [=](benchmark::State &state) {
    setArgument(state, way, variants, size);
  });
}

void corvane::bench::addArgumentCases() {
  for (const Way way : {Way::Runtime, Way::Pass, Way::Lock})
    addCase(way, 0, 4);
  for (const std::size_t variants : {0, 1, 4, 16})
    for (const std::size_t size : {4, 8, 64})
      addCase(Way::Agent, variants, size);
}
