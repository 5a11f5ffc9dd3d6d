// Measures a flush: the results table, compared with a plain program's, and the
// whole report.

#include "bench/results/ChildRun.h"
#include "bench/results/Folder.h"
#include "bench/results/PlainTable.h"
#include "bench/results/SampleLog.h"
#include "results/Files.h"
#include "results/Report.h"
#include "results/Statistics.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <utility>

using namespace corvane;
using namespace corvane::bench;

static ReportJob jobIn(const Folder &folder, const std::string &log) {
  ReportJob job;
  job.outputDirectory = folder.text();
  job.logPath = log;
  return job;
}

// Does all that a flush does but the pages.
static void writeTable(const Folder &folder, const std::string &log) {
  ReportJob job = jobIn(folder, log);
  llvm::cantFail(readRawLog(job.logPath, job.configs));
  OutputFile file(folder.file("autotune.csv"));
  ResultsTable table(file);
  for (ConfigResults &config : job.configs)
    table.addRows(rankVersions(std::exchange(config, ConfigResults())));
  llvm::cantFail(file.finish());
}

static void writeAll(const Folder &folder, const std::string &log) {
  ReportJob job = jobIn(folder, log);
  llvm::cantFail(readRawLog(job.logPath, job.configs));
  llvm::cantFail(writeResultFiles(job));
}

static std::string bytesOf(const std::string &path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// Whether the plain program writes the same table; otherwise it could not be
// compared.
static bool makesEqualTables(const Folder &folder, const std::string &log) {
  const auto compare = [&] {
    writeTable(folder, log);
    writePlainTable(log, folder.file("plain.csv"));
    const std::string table = bytesOf(folder.file("autotune.csv"));
    if (table.empty() || table != bytesOf(folder.file("plain.csv")))
      _exit(1);
  };
  return runInChild(compare).succeeded;
}

template <typename Work>
static void addCase(const std::string &name, Work work) {
  benchmark::RegisterBenchmark(name.c_str(),
                               [work](benchmark::State &state) {
                                 double peak = 0.0;
                                 for (auto _ : state) {
                                   const ChildRun run = runInChild(work);
                                   if (!run.succeeded)
                                     state.SkipWithError("the child failed");
                                   state.SetIterationTime(run.seconds);
                                   peak = std::max(peak, run.peakMiB);
                                 }
                                 state.counters["peakMiB"] = peak;
                               })
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond)
      ->Iterations(1);
}

static bool addCases(const Folder &folder, std::size_t rows) {
  const std::string log = folder.file(("rows-" + std::to_string(rows)).c_str());
  writeSampleLog(log, rows);
  if (!makesEqualTables(folder, log)) {
    std::fputs("the two tables differ\n", stderr);
    return false;
  }
  const std::string suffix = "/rows:" + std::to_string(rows);
  addCase("table" + suffix + "/plain",
          [&folder, log] { writePlainTable(log, folder.file("plain.csv")); });
  addCase("table" + suffix + "/agent",
          [&folder, log] { writeTable(folder, log); });
  addCase("table+pages" + suffix + "/agent",
          [&folder, log] { writeAll(folder, log); });
  return true;
}

int main(int argc, char **argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv))
    return 1;
  const Folder folder(memoryFolder());
  std::filesystem::create_directory(folder.file("html"));
  for (const std::size_t rows : {10'000, 100'000, 1'000'000})
    if (!addCases(folder, rows))
      return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
