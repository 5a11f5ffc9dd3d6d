// Tests that a program with variants is told, under the agent, what it would be
// told alone without them; and that its variants run nevertheless.

#include "tests/system/autotune/HostRun.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

using namespace corvane::test;
using testing::Each;
using testing::Ge;
using testing::StartsWith;

namespace {

const char withoutVariants[] = "-DWITHOUT_VARIANTS";
const char withVariants[] = "-DWITH_VARIANTS";

struct Story {
  const char *name;
  std::string program;
  std::string part;
  /// The options of the program alone that the normal mode is compared with:
  /// the agent finds variants in linked programs only when it autotunes.
  const char *aloneInNormalMode;
  size_t variantsLaunched; ///< in normal mode
  RowCounts rows;
  Environment changes;
};

void PrintTo(const Story &story, std::ostream *out) { *out << story.name; }

std::map<std::string, size_t> everyVersion(size_t launches) {
  return {{"baseline", launches},
          {"c0S2", launches},
          {"g0S4", launches},
          {"l0S2", launches}};
}

std::map<std::string, size_t> kernelAlone(size_t launches) {
  return {{"baseline", launches}};
}

std::vector<Story> stories() {
  return {
      {"KernelsOfBuiltPrograms",
       "kernelLists",
       "built",
       withoutVariants,
       3,
       {{"accumulate,1024,,,64,,", everyVersion(3)},
        {"negate,1024,,,64,,", kernelAlone(3)}},
       {}},
      {"KernelsOfLinkedPrograms",
       "kernelLists",
       "linked",
       withVariants,
       0,
       {{"accumulate,1024,,,64,,", everyVersion(1)},
        {"negate,1024,,,64,,", kernelAlone(1)}},
       {}},
      {"NotificationsOfBuilds",
       "notifications",
       "built",
       withoutVariants,
       3,
       {{"accumulate,1024,,,64,,", everyVersion(3)}},
       {}},
      {"NotificationsOfLinks",
       "notifications",
       "linked",
       withVariants,
       0,
       {{"accumulate,1024,,,64,,", everyVersion(1)}},
       {}},
      {"LivesOfPrograms",
       "programLives",
       "",
       withoutVariants,
       6,
       {{"accumulate,1024,,,64,,", everyVersion(1)},
        {"accumulate,1024,,,32,,", everyVersion(1)},
        {"accumulate,1024,,,16,,", kernelAlone(3)},
        {"accumulate,1024,,,8,,", everyVersion(3)},
        {"accumulate,1024,,,128,,", kernelAlone(2)},
        {"accumulate,1024,,,256,,", everyVersion(2)},
        {"accumulate,1024,,,4,,", everyVersion(1)},
        {"accumulate,1024,,,2,,", kernelAlone(1)}},
       {}},
      {"QuestionsToQueues",
       "queueQuestions",
       "",
       withoutVariants,
       0,
       {{"negate,1024,,,64,,", kernelAlone(12)}},
       {}},
      {"SharedMemory",
       "sharedMemory",
       "",
       withoutVariants,
       1,
       {{"accumulate,1024,,,32,,", everyVersion(1)}},
       {}},
      {"ReopenedLoader",
       "reopenedLoader",
       "",
       withoutVariants,
       3,
       {}, // launches that wait for the application are not tuned
       {}},
      {"SecondContextWithoutFlush",
       "secondContext",
       "",
       withoutVariants,
       10,
       {{"accumulate,1024,,,64,,", everyVersion(5)},
        {"accumulate,1024,,,32,,", everyVersion(5)}},
       {}},
      {"SecondContextAfterFlush",
       "secondContext",
       "",
       withoutVariants,
       2,
       {{"accumulate,1024,,,64,,", everyVersion(1)},
        {"accumulate,1024,,,32,,", everyVersion(1)}},
       {{"CORV_FLUSH_AUTOTUNE_ON_RELEASE_CONTEXT", "1"}}},
  };
}

class SameAnswers : public testing::TestWithParam<Story> {
protected:
  ProgramRun run(const char *variants, const Environment &environment) const {
    Environment all = environment;
    all["POCL_CACHE_DIR"] = ownKernelCache();
    all.insert(GetParam().changes.begin(), GetParam().changes.end());
    return runProgram(
        hostProgram(GetParam().program, {variants, GetParam().part}), all);
  }

  static void expectSame(const ProgramRun &run, const ProgramRun &alone) {
    EXPECT_EQ(alone.exitCode, 0) << alone.err;
    EXPECT_FALSE(alone.out.empty());
    EXPECT_EQ(run.exitCode, alone.exitCode);
    EXPECT_EQ(run.out, alone.out);
    EXPECT_EQ(withoutReports(run.err), linesOf(alone.err));
  }

private:
  // PoCL's clLinkProgram fails if the compiled program that it is about to
  // replace in its cache has just been removed by another process that links
  // the same.
  static std::string ownKernelCache() {
    const testing::TestInfo *test =
        testing::UnitTest::GetInstance()->current_test_info();
    const std::filesystem::path folder =
        std::filesystem::path(KERNEL_CACHE_FOLDER) / test->test_suite_name() /
        test->name();
    std::filesystem::create_directories(folder);
    return folder.string();
  }

  // Without the lines in which the agent reports what the runtime refused, and
  // that no variant accepts a launch.
  static std::vector<std::string> withoutReports(const std::string &text) {
    std::vector<std::string> lines = linesOf(text);
    lines.erase(std::remove_if(lines.begin(), lines.end(),
                               [](const std::string &line) {
                                 return line.rfind("QrlAgent:: ", 0) == 0;
                               }),
                lines.end());
    return lines;
  }
};

} // namespace

TEST_P(SameAnswers, AloneAndInNormalMode) {
  const TempFolder folder;
  Environment environment = withAgent();
  environment["CORVANE_DUMP_LOG"] = folder.file("log");
  const ProgramRun alone = run(GetParam().aloneInNormalMode, withoutAgent());
  ProgramRun normal = run(withVariants, environment);

  // At its end the process has written the length of the log.
  const std::string log = folder.read("log");
  const std::string length = std::to_string(log.size()) + "\n";
  ASSERT_GE(normal.err.size(), length.size());
  EXPECT_EQ(normal.err.substr(normal.err.size() - length.size()), length);
  normal.err.resize(normal.err.size() - length.size());
  expectSame(normal, alone);

  const std::vector<std::string> lines = linesOf(log);
  EXPECT_EQ(std::count(lines.begin(), lines.end(),
                       "Corvane's generated kernel will be launched"),
            GetParam().variantsLaunched);
}

TEST_P(SameAnswers, AloneAndAutotuned) {
  const TempFolder results;
  const ProgramRun alone = run(withoutVariants, withoutAgent());
  const ProgramRun tuned = run(withVariants, autotuning(results.text()));
  expectSame(tuned, alone);
  const TimingLog log = readTimingLog(results.read(".auto.csv"));
  EXPECT_EQ(log.rows, GetParam().rows);
}

namespace {
class SameAnswersWhileTuning : public SameAnswers {};

/// Those of programs that the agent looks at in every mode.
std::vector<Story> storiesOfBuiltPrograms() {
  std::vector<Story> all = stories();
  all.erase(std::remove_if(all.begin(), all.end(),
                           [](const Story &story) {
                             return story.aloneInNormalMode == withVariants;
                           }),
            all.end());
  return all;
}
} // namespace

TEST_P(SameAnswersWhileTuning, AsAlone) {
  const TempFolder results;
  Environment environment = withAgent();
  environment["CORVANE_TUNE"] = results.text();
  const ProgramRun alone = run(withoutVariants, withoutAgent());
  const ProgramRun tuned = run(withVariants, environment);
  expectSame(tuned, alone);
}

INSTANTIATE_TEST_SUITE_P(Programs, SameAnswersWhileTuning,
                         testing::ValuesIn(storiesOfBuiltPrograms()),
                         [](const auto &story) { return story.param.name; });
INSTANTIATE_TEST_SUITE_P(Programs, SameAnswers, testing::ValuesIn(stories()),
                         [](const auto &story) { return story.param.name; });
