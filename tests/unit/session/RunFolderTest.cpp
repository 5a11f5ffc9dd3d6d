// The folder of a run, and what its process tells of itself.

#include "session/RunFolder.h"

#include "tests/support/EnvGuard.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

using namespace corvane;
using namespace corvane::test;
using testing::Contains;
using testing::Pair;

namespace fs = std::filesystem;

namespace {
ProcessLine processAt(const std::string &program) {
  ProcessLine process;
  process.program = program;
  process.host = "node-7.example";
  process.pid = 4711;
  process.start = "2024-02-29T23:59:58Z";
  return process;
}
} // namespace

TEST(RunFolder, IsNamedAfterProgramHostNumberAndTime) {
  const TempFolder folder;
  const std::string tuned = folder.file("tuned");
  EXPECT_EQ(makeRunFolder(tuned, processAt("/opt/app/solve it")),
            tuned + "/runs/solve_it-node_7.example-4711-20240229T235958Z");
  EXPECT_TRUE(
      folder.has("tuned/runs/solve_it-node_7.example-4711-20240229T235958Z"));
}

TEST(RunFolder, IsNewWhereTheNameIsTaken) {
  const TempFolder folder;
  const ProcessLine process = processAt("solve");
  const std::optional<std::string> first =
      makeRunFolder(folder.text(), process);
  ASSERT_TRUE(first);
  EXPECT_EQ(makeRunFolder(folder.text(), process), *first + "-2");
  EXPECT_EQ(makeRunFolder(folder.text(), process), *first + "-3");
}

TEST(RunFolder, NeedsAParentThatIsThere) {
  const TempFolder folder;
  EXPECT_EQ(makeRunFolder(folder.file("missing/deeper"), processAt("a")),
            std::nullopt);
  EXPECT_FALSE(folder.has("missing"));
}

TEST(RunFolder, IsNotMadeBelowAFile) {
  const TempFolder folder;
  ASSERT_TRUE(folder.write("file", "text"));
  EXPECT_EQ(makeRunFolder(folder.file("file"), processAt("a")), std::nullopt);
}

TEST(RunFolder, TakesNamesThatNobodyTold) {
  const TempFolder folder;
  ProcessLine process = processAt("");
  process.host = "";
  EXPECT_EQ(makeRunFolder(folder.text(), process),
            folder.text() + "/runs/unknown-unknown-4711-20240229T235958Z");
}

TEST(UtcText, FollowsTheCalendar) {
  EXPECT_EQ(utcText(0), "1970-01-01T00:00:00Z");
  EXPECT_EQ(utcText(951'782'400 - 1), "2000-02-28T23:59:59Z");
  EXPECT_EQ(utcText(951'782'400), "2000-02-29T00:00:00Z");
  EXPECT_EQ(utcText(1'709'251'198), "2024-02-29T23:59:58Z");
  EXPECT_EQ(utcText(1'735'689'599), "2024-12-31T23:59:59Z");
  EXPECT_EQ(utcText(4'107'542'400), "2100-03-01T00:00:00Z");
}

TEST(DescribedProcess, HasTheVariablesThatAreSet) {
  const EnvGuard set("CORVANE_DUMP_LOG", "a.log");
  const EnvGuard unset("CORVANE_AUTOTUNE", nullptr);
  const ProcessLine process = describeProcess();
  EXPECT_THAT(process.settings, Contains(Pair("CORVANE_DUMP_LOG", "a.log")));
  EXPECT_THAT(process.settings,
              testing::Not(Contains(Pair("CORVANE_AUTOTUNE", testing::_))));
}

TEST(DescribedProcess, TellsTheProgramThatRuns) {
  const ProcessLine process = describeProcess();
  EXPECT_TRUE(fs::exists(process.program)) << process.program;
  EXPECT_EQ(fs::path(process.program).stem().string(), "session_tests");
  EXPECT_NE(process.pid, 0U);
  EXPECT_FALSE(process.library.empty());
  EXPECT_EQ(process.start.size(), utcText(0).size());
}

TEST(DescribedProcess, HasTheRankThatTheStarterOfTheProcessTells) {
  const EnvGuard openMpi("OMPI_COMM_WORLD_RANK", nullptr);
  const EnvGuard pmi("PMI_RANK", nullptr);
  const EnvGuard pmix("PMIX_RANK", nullptr);
  EnvGuard slurm("SLURM_PROCID", nullptr);
  EXPECT_EQ(describeProcess().rank, std::nullopt);
  slurm.set("3");
  EXPECT_EQ(describeProcess().rank, 3U);
  slurm.set("-3 or so");
  EXPECT_EQ(describeProcess().rank, std::nullopt);
}
