// Makes rows as applications leave them.

#include "Rows.h"

#include <cstdint>
#include <cstring>
#include <iomanip>
#include <vector>

using namespace corvane::test;

namespace {

struct Version {
  const char *name;
  std::int64_t nanoseconds; ///< of a typical run
  int runs;
};

struct Config {
  const char *key; ///< kernel and sizes, as in the log
  std::vector<Version> versions;
};

/// Makes numbers vary a little from call to call, and alike in every process.
class Noise {
public:
  std::int64_t around(std::int64_t nanoseconds) {
    state = state * 1103515245U + 12345U;
    const std::int64_t thousandths = (state >> 16U) % 60U - std::int64_t(20);
    return nanoseconds + nanoseconds / 1000 * thousandths;
  }

private:
  unsigned state = 1;
};

} // namespace

// The configurations: several variants that win and one that loses; a launch
// without local sizes that takes a second; one that no variant makes faster.
// Not all versions ran equally often.
static std::vector<Config> configs() {
  return {
      {"matmul,512,512,,16,16,",
       {{"g0S2", 1480000, 24},
        {"g0S4", 1105000, 24},
        {"g0S4g1S2", 982000, 22},
        {"g0S8", 2650000, 20},
        {"baseline", 1940000, 24}}},
      {"blur,1920,1080,,0,0,",
       {{"g0S2", 936540000, 16},
        {"g0S4", 834020000, 16},
        {"baseline", 1041080000, 18}}},
      {"scale,4096,,,64,,",
       {{"g0S4", 7900, 12}, {"r1g0S2d2S4", 8400, 11}, {"baseline", 6200, 12}}}};
}

static void writeRow(std::ostream &log, const Config &config,
                     const Version &version, std::int64_t nanoseconds) {
  log << config.key << ',' << version.name << ',' << nanoseconds / 1000 << '.'
      << std::setw(3) << std::setfill('0') << nanoseconds % 1000 << '\n';
}

// Writes one launch after the other, with all versions that have runs left. The
// first launch is slow, as it usually is; the fifth run of a baseline is an
// outlier.
static void writeLaunches(std::ostream &log, const Config &config) {
  Noise noise;
  for (int run = 0; run != 24; ++run)
    for (const Version &version : config.versions) {
      if (run >= version.runs)
        continue;
      std::int64_t time = noise.around(version.nanoseconds);
      if (run == 0)
        time += time / 2;
      if (run == 4 && std::strcmp(version.name, "baseline") == 0)
        time *= 4;
      writeRow(log, config, version, time);
    }
}

void corvane::test::writeOrdinaryRows(std::ostream &log) {
  for (const Config &config : configs())
    writeLaunches(log, config);
}
