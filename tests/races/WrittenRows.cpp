// Compares the rows of a raw timing log with the runs that completed, and reads
// run records.

#include "tests/races/WrittenRows.h"

#include "results/runs/RunReader.h"

#include "gtest/gtest.h"

#include <filesystem>
#include <set>
#include <sstream>

using namespace corvane;
using namespace corvane::test;

static const char *const header =
    "kernel,x_global,y_global,z_global,x_local,y_local,z_local,coarsed_kernel,"
    "time";

// Every run has another time, so all rows differ.
static std::set<std::string>
rowsOf(const std::vector<loose::ReportedRun> &reported) {
  std::set<std::string> rows;
  for (const loose::ReportedRun &run : reported) {
    EXPECT_TRUE(rows.insert(run.row).second) << "reported twice: " << run.row;
  }
  return rows;
}

std::size_t
corvane::test::expectRows(const std::string &log,
                          const std::vector<loose::ReportedRun> &reported,
                          bool someAreLost) {
  EXPECT_FALSE(log.empty());
  EXPECT_EQ(log.back(), '\n') << "the last row is torn";
  std::istringstream lines(log);
  std::string line;
  std::getline(lines, line);
  EXPECT_EQ(line, header);

  const std::set<std::string> runs = rowsOf(reported);
  std::set<std::string> written;
  while (std::getline(lines, line)) {
    EXPECT_EQ(runs.count(line), 1U) << "no launch made this row: " << line;
    EXPECT_TRUE(written.insert(line).second) << "written twice: " << line;
  }
  for (const loose::ReportedRun &run : reported)
    if (run.beforeFlush && !someAreLost) {
      EXPECT_EQ(written.count(run.row), 1U) << "no row for " << run.row;
    }
  return written.size();
}

std::size_t corvane::test::expectRecords(const TempFolder &tunedFolder) {
  std::size_t samples = 0;
  for (const auto &run :
       std::filesystem::directory_iterator(tunedFolder.path() / "runs")) {
    const RunRecord record = readRun(readBytes(run.path() / "run.jsonl"));
    for (const RunProblem &problem : record.problems)
      ADD_FAILURE() << "line " << problem.line << ": " << problem.text;
    EXPECT_TRUE(record.process);
    for (const auto &[number, configuration] : record.configurations)
      samples += configuration.samples.size();
  }
  return samples;
}
