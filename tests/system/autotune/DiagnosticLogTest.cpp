// Tests of what the diagnostic log says of an autotuning run.

#include "tests/system/autotune/HostRun.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace corvane::test;

TEST(DiagnosticLog, CountsTheVersionsThatRanAndAllThatThereAre) {
  const TempFolder folder;
  Environment environment = autotuning(folder.file("out"));
  environment["CORVANE_DUMP_LOG"] = folder.file("log");
  const ProgramRun run = runProgram(hostProgram("overlapping"), environment);
  const std::string log = folder.read("log");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.err, std::to_string(log.size()) + "\n");

  const std::vector<std::string> lines = linesOf(log);
  const auto count = [&](const std::string &line) {
    return std::count(lines.begin(), lines.end(), line);
  };
  const std::string rest =
      " kernel(s)  out of 4 are tested in addition to the original kernel";
  EXPECT_EQ(count("3" + rest), 4);
  EXPECT_EQ(count("0" + rest), 8);
  EXPECT_EQ(count("EnqueueNDRange called for accumulate in autotuning mode"),
            12);
}
