// Multiplies two matrices of floats, twice with inner sizes that differ.

#include "examples/common/Device.h"
#include "examples/common/Failure.h"
#include "examples/common/Launch.h"
#include "examples/common/Options.h"
#include "examples/common/Report.h"

#include <algorithm>
#include <string>
#include <vector>

using namespace examples;

extern const char matmulSource[];

/// A matrix times a matrix: height x depth times depth x width.
struct Product {
  size_t height, depth, width;
};

static constexpr size_t localWidth = 16;
static constexpr size_t localHeight = 4;

/// Values between -1 and 1 that look like noise but are the same in every run.
static std::vector<float> noise(size_t count, unsigned seed) {
  std::vector<float> values(count);
  for (float &value : values) {
    seed = seed * 1664525u + 1013904223u;
    value = static_cast<float>(seed >> 8) / 8388608.f - 1.f;
  }
  return values;
}

static std::vector<double> multiplyOnHost(const Product &product,
                                          const std::vector<float> &a,
                                          const std::vector<float> &b) {
  std::vector<double> c(product.height * product.width, 0.);
  for (size_t row = 0; row < product.height; ++row)
    for (size_t k = 0; k < product.depth; ++k) {
      const double factor = static_cast<double>(a[row * product.depth + k]);
      for (size_t column = 0; column < product.width; ++column)
        c[row * product.width + column] +=
            factor * static_cast<double>(b[k * product.width + column]);
    }
  return c;
}

/// A float sum of `depth` products below 1 errs by at most `depth` roundings of
/// a number below `depth`.
static double toleranceOf(const Product &product) {
  const double depth = static_cast<double>(product.depth);
  return depth * depth * 6e-8;
}

static void multiply(const Device &device, const Kernel &kernel,
                     const Product &product, size_t iterations,
                     Report &report) {
  const std::vector<float> a = noise(product.height * product.depth, 1);
  const std::vector<float> b = noise(product.depth * product.width, 2);
  const size_t count = product.height * product.width;
  const Buffer aBuffer = device.bufferOf(a);
  const Buffer bBuffer = device.bufferOf(b);
  const Buffer cBuffer = device.bufferOf(std::vector<float>(count, -1.f));

  setArguments(kernel, cBuffer, aBuffer, bBuffer,
               static_cast<cl_int>(product.depth),
               static_cast<cl_int>(product.width));
  const NDRange range = {
      2, {product.width, product.height}, {localWidth, localHeight}};
  const Timing timing = timeLaunches(
      device, iterations, [&](size_t) { enqueue(device, kernel, range); });

  const std::vector<float> c = device.read<float>(cBuffer, count);
  const size_t wrong =
      countFar(c, multiplyOnHost(product, a, b), toleranceOf(product));
  report.add("depth-" + std::to_string(product.depth), timing, wrong, count);
}

int main(int argumentCount, char **arguments) {
  setProgramName("matmul");
  size_t size = 512;
  size_t oddDepth = 510;
  size_t iterations = 10;
  Options options("Multiplies square matrices of floats on an OpenCL device, "
                  "and then two that are less deep.");
  options.add("--size", size, "rows and columns, a multiple of 16");
  options.add("--odd-depth", oddDepth, "inner size of the second product");
  options.add("--iterations", iterations, "timed launches");
  options.parse(argumentCount, arguments);
  if (size % localWidth != 0 || size > 8192 || oddDepth > 8192)
    fail("--size needs a multiple of 16, and no size may exceed 8192");

  const Device device;
  Report report("matmul", "matrices of " + std::to_string(size) + " x " +
                              std::to_string(size) + " on " + device.name());
  const Program program = device.build(matmulSource);
  const Kernel kernel = createKernel(program, "matmul");
  multiply(device, kernel, {size, size, size}, iterations, report);
  // The second product is only there for its result; a few launches will do.
  multiply(device, kernel, {size, oddDepth, size},
           std::min<size_t>(iterations, 3), report);
  return report.exitCode();
}
