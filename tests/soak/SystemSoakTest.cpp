// Tests of what stays in memory after many launches on a real OpenCL runtime,
// through the layer.

#include "tests/system/autotune/HostRun.h"

#include "gtest/gtest.h"

#include <cstdlib>
#include <iostream>
#include <sstream>

using namespace corvane::test;

namespace {
constexpr long versions = 4; // of "accumulate", itself among them

std::string wantedLaunches() {
  const char *value = std::getenv("CORVANE_SOAK_SYSTEM_LAUNCHES");
  return value ? value : SOAK_LAUNCHES;
}

/// What the program prints of itself.
struct Told {
  std::string results;
  long launches = 0; ///< between the two measurements
  long grown = 0;    ///< bytes, between them
  long files = 0;    ///< descriptors, between them
};

Told runWith(const Environment &environment) {
  const ProgramRun run =
      runProgram(hostProgram("endless", {wantedLaunches()}), environment);
  EXPECT_EQ(run.exitCode, 0) << run.err;
  Told told;
  std::istringstream lines(run.out);
  std::getline(lines, told.results);
  lines >> told.launches >> told.grown >> told.files;
  EXPECT_TRUE(lines) << run.out;
  EXPECT_EQ(told.files, 0);
  return told;
}
} // namespace

TEST(SystemSoak, OfAutotunedLaunchesKeepsTheirTimesAndNothingElse) {
  const TempFolder results(folderInMemory());
  const Told alone = runWith(withoutAgent());
  const Told tuned = runWith(autotuning(results.text()));
  EXPECT_EQ(tuned.results, alone.results);

  const long perLaunch = (tuned.grown - alone.grown) / tuned.launches;
  std::cout << tuned.launches << " launches of " << versions << " versions, "
            << perLaunch << " bytes each; alone "
            << alone.grown / alone.launches << "\n";
  EXPECT_LE(perLaunch, SOAK_BYTES);

  const TimingLog log = readTimingLog(results.read(".auto.csv"));
  EXPECT_EQ(log.times.size(),
            static_cast<std::size_t>(versions * std::stol(wantedLaunches())));
  EXPECT_EQ(linesOf(results.read("autotune.csv")).size(), log.times.size() + 1);
}

TEST(SystemSoak, OfNormalLaunchesKeepsNothing) {
  const Told alone = runWith(withoutAgent());
  const Told normal = runWith(withAgent());
  EXPECT_EQ(normal.results, alone.results);
  const long more = normal.grown - alone.grown;
  std::cout << normal.launches << " launches, " << more << " bytes in all\n";
  EXPECT_LE(more, 32768);
}
