// Tests that a program that is killed leaves a log that can be read.

#include "tests/system/autotune/HostRun.h"
#include "tests/system/autotune/RunningHost.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <system_error>
#include <thread>

using namespace corvane::test;

namespace {

/// Chooses the same moments in every run of the tests.
std::mt19937 random(unsigned seed) { return std::mt19937(20240521u + seed); }

class KilledProgram : public testing::TestWithParam<unsigned> {
protected:
  KilledProgram() {
    // Compiles all kernels, so that no compilation is killed later.
    const ProgramRun run =
        runProgram(hostProgram("many", {"1"}), autotuning(results.text()));
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_TRUE(results.has("autotune.csv"));
  }

  /// A program with more launches than any machine gets done before the kill.
  static std::vector<std::string> endless() {
    return hostProgram("many", {"10000000"});
  }

  void expectReadableLog(size_t leastRows) const {
    const TimingLog log = readKilledLog(killed.read(".auto.csv"));
    EXPECT_GE(log.times.size(), leastRows);
    for (const auto &[launch, versions] : log.rows) {
      EXPECT_EQ(launch, "accumulate,64,,,16,,");
      for (const auto &[version, count] : versions)
        EXPECT_TRUE(version == "baseline" || version == "c0S2" ||
                    version == "g0S4" || version == "l0S2")
            << version << " " << count;
    }
    EXPECT_FALSE(killed.has("autotune.csv"));
  }

  const TempFolder results;
  const TempFolder killed;
};

} // namespace

TEST_P(KilledProgram, LeavesValidLinesAfterAnyTime) {
  auto numbers = random(GetParam());
  for (int i = 0; i < 3; ++i) {
    RunningHost host(endless(), autotuning(killed.text()));
    std::this_thread::sleep_for(std::chrono::microseconds(numbers() % 400000));
    host.kill();
    expectReadableLog(0);
  }
}

TEST_P(KilledProgram, LeavesValidLinesAfterAnyNumberOfThem) {
  auto numbers = random(GetParam());
  for (int i = 0; i < 3; ++i) {
    std::filesystem::remove(killed.file(".auto.csv"));
    RunningHost host(endless(), autotuning(killed.text()));
    const std::uintmax_t bytes = 200 + numbers() % 20000;
    std::error_code error;
    const auto size = [&] {
      const auto now =
          std::filesystem::file_size(killed.file(".auto.csv"), error);
      return error ? 0 : now;
    };
    while (size() < bytes && host.isRunning())
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    host.kill();
    expectReadableLog(3);
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, KilledProgram, testing::Range(1u, 6u));
