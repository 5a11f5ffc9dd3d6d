// Tests that programs that use memory, queues and threads in every way get the
// results that they get alone, and that every accepting version is timed.

#include "tests/system/autotune/HostRun.h"

#include <gmock/gmock.h>

using namespace corvane::test;
using testing::Each;
using testing::Gt;
using testing::HasSubstr;
using testing::SizeIs;

namespace {

struct Story {
  const char *name;
  std::vector<std::string> command;
  int exitCode;
  size_t results;  ///< lines that the program prints
  size_t warnings; ///< launches whose arguments a condition refuses
  RowCounts rows;
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
      {"inPlace",
       hostProgram("inPlace"),
       3,
       6,
       2,
       {{"accumulate,1024,,,64,,", everyVersion(5)},
        {"accumulate,1024,,,32,,", everyVersion(2)},
        {"accumulate,30,,,10,,", {{"baseline", 2}, {"c0S2", 2}}},
        {"scale,1024,,,64,,", {{"baseline", 4}, {"g0S2d1S2", 2}}},
        {"grid,32,16,,0,0,", {{"baseline", 3}, {"g1S2", 3}, {"l0S2", 3}}},
        {"negate,1024,,,64,,", kernelAlone(1)}}},
      // A part that a kernel can write to cannot be saved, so no version may
      // spoil it; and any part can be written to unless the runtime tells more.
      {"overlapping",
       hostProgram("overlapping"),
       0,
       7,
       0,
       {{"accumulate,1024,,,64,,", everyVersion(2)},
        {"accumulate,1024,,,32,,", everyVersion(2)},
        {"accumulate,1024,,,16,,", kernelAlone(2)},
        {"accumulate,1024,,,128,,", kernelAlone(2)},
        {"accumulate,1024,,,8,,", kernelAlone(2)},
        {"accumulate,1024,,,256,,", kernelAlone(2)}}},
      {"overlappingKnownToBeRead",
       hostProgram("overlapping", {"-cl-kernel-arg-info"}),
       0,
       7,
       0,
       {{"accumulate,1024,,,64,,", everyVersion(2)},
        {"accumulate,1024,,,32,,", everyVersion(2)},
        {"accumulate,1024,,,16,,", kernelAlone(2)},
        {"accumulate,1024,,,128,,", everyVersion(2)},
        {"accumulate,1024,,,8,,", kernelAlone(2)},
        {"accumulate,1024,,,256,,", everyVersion(2)}}},
      {"queues",
       hostProgram("queues"),
       0,
       6,
       0,
       {{"accumulate,1024,,,64,,", everyVersion(6)},
        {"accumulate,1024,,,32,,", everyVersion(8)},
        {"accumulate,1024,,,16,,", everyVersion(8)}}},
      {"threads",
       hostProgram("threads"),
       0,
       4,
       0,
       {{"accumulate,1024,,,64,,", everyVersion(12)},
        {"accumulate,1024,,,32,,", everyVersion(12)}}},
      {"letGo",
       hostProgram("letGo"),
       0,
       1,
       0,
       {{"accumulate,1024,,,64,,", everyVersion(20)},
        {"grid,32,32,,0,0,", {{"baseline", 20}, {"g1S2", 20}, {"l0S2", 20}}},
        {"negate,1024,,,64,,", kernelAlone(20)}}},
      {"newerCalls",
       hostProgram("newerCalls"),
       0,
       8,
       0,
       {{"accumulate,1024,,,64,,", everyVersion(4)},
        {"accumulate,1024,,,32,,", everyVersion(4)},
        {"accumulate,1024,,,16,,", everyVersion(4)},
        {"accumulate,1024,,,128,,", everyVersion(4)}}},
      {"bindings",
       hostProgram("bindings"),
       0,
       2,
       0,
       {{"accumulate,1024,,,64,,", everyVersion(4)},
        {"accumulate,1024,,,32,,", everyVersion(4)}}},
  };
}

class EveryStory : public testing::TestWithParam<Story> {};

} // namespace

TEST_P(EveryStory, HasTheSameResultsAloneAndInNormalMode) {
  const auto &command = GetParam().command;
  const ProgramRun alone = runProgram(command, withoutAgent());
  EXPECT_EQ(alone.exitCode, GetParam().exitCode) << alone.err;
  EXPECT_THAT(linesOf(alone.out), SizeIs(GetParam().results));
  EXPECT_EQ(alone.err, "");

  const ProgramRun normal = runProgram(command, withAgent());
  EXPECT_EQ(normal.out, alone.out);
  EXPECT_EQ(normal.exitCode, alone.exitCode);
  EXPECT_THAT(linesOf(normal.err), SizeIs(GetParam().warnings));
  EXPECT_THAT(linesOf(normal.err), Each(HasSubstr("input scalar values")));
}

TEST_P(EveryStory, HasTheSameResultsAndARowForEachRunWhenAutotuned) {
  const TempFolder results;
  const TimingLog log = autotune(GetParam().command, results);
  EXPECT_EQ(log.rows, GetParam().rows);
  EXPECT_THAT(log.times, Each(Gt(0.0)));
}

TEST_P(EveryStory, EndsWithATableAndAReport) {
  const TempFolder results;
  autotune(GetParam().command, results);
  const std::string table = results.read("autotune.csv");
  for (const auto &[launch, versions] : GetParam().rows)
    for (const auto &[version, count] : versions)
      EXPECT_THAT(table, HasSubstr("," + version + ",")) << launch << count;
  EXPECT_THAT(results.read("main.html"), HasSubstr("html/index.html"));
  EXPECT_TRUE(results.has("html/index.html"));
}

INSTANTIATE_TEST_SUITE_P(Programs, EveryStory, testing::ValuesIn(stories()),
                         [](const auto &story) { return story.param.name; });
