// Measures one row of the raw timing log, compared with the system calls alone,
// early and late in a long run.

#include "agent/Environment.h"
#include "agent/Flags.h"
#include "bench/results/Folder.h"
#include "bench/results/SampleLog.h"
#include "session/LogAppender.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <fstream>

#include <fcntl.h>
#include <sys/stat.h>

using namespace corvane;
using namespace corvane::bench;

static constexpr const char *row = "k,1024,1024,,16,16,,g0S4,12.345\n";

static std::shared_ptr<LaunchRecord> someLaunch(LaunchHistory &history) {
  auto launch =
      history.makeRecord(makeLaunchKey("k", {2, {1024, 1024, 0}, {16, 16, 0}}));
  const std::lock_guard<std::mutex> lock(history.lock);
  launch->timings.push_back({&history.shared("g0S4"), 12345});
  return launch;
}

static void appendByAgent(benchmark::State &state, std::size_t launchesBefore) {
  LaunchHistory history;
  for (std::size_t i = 0; i != launchesBefore; ++i)
    history.records.push_back(someLaunch(history));
  const std::shared_ptr<LaunchRecord> launch = someLaunch(history);
  const std::lock_guard<std::mutex> lock(history.lock);
  for (auto _ : state)
    appendTiming(history, *launch);
}

// Opens the log, checks that it is not empty, appends a row, and closes it.
static void appendByCalls(benchmark::State &state, const std::string &log) {
  for (auto _ : state) {
    const int file = open(log.c_str(), O_RDWR | O_APPEND);
    struct stat status {};
    if (file < 0 || fstat(file, &status) != 0 || status.st_size == 0 ||
        write(file, row, std::strlen(row)) < 0 || close(file) != 0)
      state.SkipWithError("a system call failed");
  }
}

static void appendByStreams(benchmark::State &state, const std::string &log) {
  for (auto _ : state) {
    std::ifstream before(log);
    if (before.peek() == EOF)
      state.SkipWithError("an empty log");
    std::ofstream file(log, std::ios::app);
    file << row << std::flush;
  }
}

static void addCases(const std::string &log, std::size_t rowsBefore) {
  const auto add = [&](const char *way, auto run) {
    benchmark::RegisterBenchmark(
        ("row/before:" + std::to_string(rowsBefore) + "/" + way).c_str(),
        [=](benchmark::State &state) {
          writeSampleLog(log, rowsBefore);
          run(state);
        });
  };
  add("calls", [=](benchmark::State &state) { appendByCalls(state, log); });
  add("streams", [=](benchmark::State &state) { appendByStreams(state, log); });
  add("agent",
      [=](benchmark::State &state) { appendByAgent(state, rowsBefore); });
}

int main(int argc, char **argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv))
    return 1;
  const Folder folder(std::filesystem::temp_directory_path());
  setAutotuneOutput(true);
  setEnv(variable::autotune, folder.text().c_str(), 1);
  for (const std::size_t rowsBefore : {100, 1'000'000})
    addCases(folder.file(".auto.csv"), rowsBefore);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
