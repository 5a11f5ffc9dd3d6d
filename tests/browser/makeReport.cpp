// Has the real library write a report from launches that never took place.
//
// makeReport <agent library>: the environment configures the library as usual,
// and the rows below stand in the log as if an application had run.

#include "agent/AgentInterface.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <string>
#include <vector>

#include <dlfcn.h>

using namespace corvane;

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

/// A little more or less at each call, and the same at each start.
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

// Several variants that win and one that loses; a launch without local sizes
// that takes a second; one that no variant makes faster. Not all versions ran
// equally often.
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

// One launch after the other, each of all versions that are still running. The
// first launch is slow, as first launches are; the fifth of a baseline meets
// some other load and is an outlier.
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

static cl_int giveEmptyTable(AgentOperations *, void *table, size_t size) {
  std::memset(table, 0, size);
  return CL_SUCCESS;
}
static cl_int takeTable(AgentOperations *, void *, size_t) {
  return CL_SUCCESS;
}

static bool writeReport(void *library, const std::string &folder) {
  const auto load = reinterpret_cast<cl_int (*)(AgentOperations *)>(
      dlsym(library, "clAgent_OnLoad"));
  const auto unload = reinterpret_cast<void (*)(AgentOperations *)>(
      dlsym(library, "clAgent_OnUnload"));
  AgentOperations agent{{}, giveEmptyTable, takeTable};
  if (!load || !unload || load(&agent) != CL_SUCCESS)
    return false;

  std::ofstream log(folder + "/.auto.csv", std::ios::app);
  for (const Config &config : configs())
    writeLaunches(log, config);
  log.close();
  unload(&agent);
  return !log.fail() && std::filesystem::exists(folder + "/main.html");
}

int main(int count, char **arguments) {
  const char *folder = std::getenv("CORVANE_AUTOTUNE");
  if (count != 2 || !folder) {
    std::fprintf(stderr, "usage: CORVANE_AUTOTUNE=... makeReport <library>\n");
    return 2;
  }
  // The report of a run before must not pass for that of this one.
  std::filesystem::remove_all(std::string(folder) + "/html");
  std::filesystem::remove(std::string(folder) + "/main.html");

  void *library = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
  if (!library) {
    std::fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  // Stays loaded, or its lock would look like lost memory to a leak checker.
  const bool written = writeReport(library, folder);
  if (!written)
    std::fprintf(stderr, "The library wrote no report to %s\n", folder);
  return written ? 0 : 1;
}
