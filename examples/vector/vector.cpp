// Works on long vectors: sums their work-groups, and deals them out like cards.

#include "examples/common/Device.h"
#include "examples/common/Failure.h"
#include "examples/common/Launch.h"
#include "examples/common/Options.h"
#include "examples/common/Report.h"

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

using namespace examples;

extern const char vectorSource[];

static constexpr size_t groupSize = 256;

static std::vector<double> sumOnHost(const std::vector<float> &values) {
  std::vector<double> sums(values.size() / groupSize, 0.);
  for (size_t i = 0; i < values.size(); ++i)
    sums[i / groupSize] += static_cast<double>(values[i]);
  return sums;
}

static void sumGroups(const Device &device, const Program &program, size_t size,
                      size_t iterations, Report &report) {
  std::vector<float> values(size);
  for (size_t i = 0; i < size; ++i)
    values[i] = static_cast<float>((i * 7919) % 1000) / 1000.f;
  const size_t groups = size / groupSize;
  const Buffer valuesBuffer = device.bufferOf(values);
  const Buffer sumsBuffer = device.bufferOf(std::vector<float>(groups, -1.f));

  const Kernel kernel = createKernel(program, "sumGroups");
  setArguments(kernel, sumsBuffer, valuesBuffer,
               LocalMemory{groupSize * sizeof(float)});
  const NDRange range = {1, {size, 1}, {groupSize, 1}};
  const Timing timing = timeLaunches(
      device, iterations, [&](size_t) { enqueue(device, kernel, range); });

  // A sum below 256 is rounded at most 256 times, by half of 1/65536 each.
  const double tolerance = 256. / 131072.;
  const std::vector<float> sums = device.read<float>(sumsBuffer, groups);
  report.add("sum", timing, countFar(sums, sumOnHost(values), tolerance),
             groups);
}

static std::vector<std::uint32_t>
dealOnHost(const std::vector<std::uint32_t> &cards) {
  const size_t groups = cards.size() / groupSize;
  std::vector<std::uint32_t> hands(cards.size());
  for (size_t i = 0; i < cards.size(); ++i)
    hands[(i % groupSize) * groups + i / groupSize] = cards[i];
  return hands;
}

static void deal(const Device &device, const Program &program, size_t size,
                 size_t iterations, Report &report) {
  std::vector<std::uint32_t> cards(size);
  for (size_t i = 0; i < size; ++i)
    cards[i] = static_cast<std::uint32_t>(i) * 2654435761u + 1u;
  const Buffer cardsBuffer = device.bufferOf(cards);
  const Buffer handsBuffer =
      device.bufferOf(std::vector<std::uint32_t>(size, 0));

  const Kernel kernel = createKernel(program, "deal");
  setArguments(kernel, handsBuffer, cardsBuffer);
  const NDRange range = {1, {size, 1}, {groupSize, 1}};
  const Timing timing = timeLaunches(
      device, iterations, [&](size_t) { enqueue(device, kernel, range); });

  const auto hands = device.read<std::uint32_t>(handsBuffer, size);
  report.add("deal", timing, countDifferent(hands, dealOnHost(cards)), size);
}

int main(int argumentCount, char **arguments) {
  setProgramName("vector");
  size_t size = size_t(1) << 21;
  size_t iterations = 20;
  Options options("Sums the work-groups of a vector on an OpenCL device, and "
                  "deals another out like cards.");
  options.add("--size", size, "length of the vectors, a multiple of 256");
  options.add("--iterations", iterations, "timed launches of each kernel");
  options.parse(argumentCount, arguments);
  if (size % groupSize != 0 ||
      size > size_t(std::numeric_limits<std::int32_t>::max()))
    fail("--size needs a multiple of 256 below 2147483648");

  const Device device;
  Report report("vector", "vectors of " + std::to_string(size) + " values on " +
                              device.name());
  const Program program = device.build(vectorSource);
  sumGroups(device, program, size, iterations, report);
  deal(device, program, size, iterations, report);
  return report.exitCode();
}
