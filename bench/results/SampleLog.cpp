// Makes up the launches of a long program.

#include "bench/results/SampleLog.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <random>

using namespace corvane::bench;

static constexpr std::array<const char *, 5> versions = {
    "g0S2", "g0S4", "c0S4c1S2", "g0S8d3S4", "baseline"};
static constexpr std::size_t rowsOfConfiguration = 100;

// A hundred kernels, each launched with many sizes.
static std::string keyOf(std::size_t configuration) {
  const std::string size = std::to_string(64 * (1 + configuration / 100));
  return "kernel" + std::to_string(configuration % 100) + "," + size + "," +
         size + ",,16,4,,";
}

// A time between microseconds and milliseconds, by configuration, with some
// percent of noise and now and then a disturbance.
static double timeOf(std::size_t configuration, std::size_t version,
                     std::minstd_rand &random) {
  const double usual = 5.0 * static_cast<double>(1 + configuration % 997) *
                       (1.0 + 0.25 * static_cast<double>(version));
  const auto noise = static_cast<double>(random() % 10007);
  return usual * (1.0 + noise / 100000.0) * (random() % 64 == 0 ? 4.0 : 1.0);
}

void corvane::bench::writeSampleLog(const std::string &path, std::size_t rows) {
  const std::size_t configurations = rows / rowsOfConfiguration;
  std::minstd_rand random(1);
  std::ofstream log(path, std::ios::binary);
  log << "kernel,x_global,y_global,z_global,x_local,y_local,z_local,"
         "coarsed_kernel,time\n";
  for (std::size_t row = 0; row != rows; ++row) {
    const std::size_t version = row % versions.size();
    const std::size_t configuration = row / versions.size() % configurations;
    std::array<char, 32> time{};
    std::snprintf(time.data(), time.size(), "%.3f",
                  timeOf(configuration, version, random));
    log << keyOf(configuration) << versions[version] << ',' << time.data()
        << '\n';
  }
}
