// Sums the columns of a matrix; its kernel has variants to choose from.

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

extern const char columnsSource[];

static constexpr size_t groupSize = 64;

static std::vector<std::uint32_t>
sumOnHost(const std::vector<std::uint32_t> &matrix, size_t width) {
  std::vector<std::uint32_t> sums(width, 0);
  for (size_t i = 0; i < matrix.size(); ++i)
    sums[i % width] += matrix[i];
  return sums;
}

static void sumColumns(const Device &device, size_t width, size_t height,
                       size_t iterations, Report &report) {
  std::vector<std::uint32_t> matrix(width * height);
  for (size_t i = 0; i < matrix.size(); ++i)
    matrix[i] = static_cast<std::uint32_t>(i) * 2654435761u + 1u;
  const Buffer matrixBuffer = device.bufferOf(matrix);
  const Buffer sumsBuffer =
      device.bufferOf(std::vector<std::uint32_t>(width, 0));

  const Program program = device.build(columnsSource);
  const Kernel kernel = createKernel(program, "columns");
  setArguments(kernel, sumsBuffer, matrixBuffer, static_cast<cl_int>(width),
               static_cast<cl_int>(height));
  const NDRange range = {1, {width, 1}, {groupSize, 1}};
  const Timing timing = timeLaunches(
      device, iterations, [&](size_t) { enqueue(device, kernel, range); });

  const auto sums = device.read<std::uint32_t>(sumsBuffer, width);
  report.add("sums", timing, countDifferent(sums, sumOnHost(matrix, width)),
             width);
}

int main(int argumentCount, char **arguments) {
  setProgramName("columns");
  size_t width = 4096;
  size_t height = 512;
  size_t iterations = 20;
  Options options("Sums the columns of a matrix on an OpenCL device.");
  options.add("--width", width, "columns, a multiple of 64");
  options.add("--height", height, "rows");
  options.add("--iterations", iterations, "timed launches");
  options.parse(argumentCount, arguments);
  const size_t most = size_t(std::numeric_limits<std::int32_t>::max());
  if (width == 0 || width % groupSize != 0 || width > most)
    fail("--width needs a multiple of 64 below 2147483648");
  if (height == 0 || height > most / width)
    fail("--width times --height must lie between 1 and 2147483647");

  const Device device;
  Report report("columns", std::to_string(width) + " columns of " +
                               std::to_string(height) + " values on " +
                               device.name());
  sumColumns(device, width, height, iterations, report);
  return report.exitCode();
}
