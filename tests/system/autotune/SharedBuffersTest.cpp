// Programs that let several commands work on one buffer at the same time have
// the results that they would have alone.

#include "tests/system/autotune/HostRun.h"

#include <gmock/gmock.h>

using namespace corvane::test;
using testing::Ge;
using testing::SizeIs;

namespace {
class WorkOnTheOtherHalf : public testing::TestWithParam<const char *> {};
} // namespace

TEST_P(WorkOnTheOtherHalf, IsNotUndone) {
  const TempFolder results;
  const TimingLog log = autotune(hostProgram("halves", {GetParam()}), results);
  // Nothing is in the way of the first launch, at least.
  EXPECT_THAT(log.rows.size(), Ge(1u));
  for (const auto &[launch, versions] : log.rows)
    for (const auto &[version, count] : versions)
      EXPECT_EQ(count, versions.at("baseline")) << launch << " " << version;
}

INSTANTIATE_TEST_SUITE_P(Of, WorkOnTheOtherHalf,
                         testing::Values("upload", "blocking", "fill", "copy",
                                         "map", "part", "launch"),
                         [](const auto &kind) {
                           return std::string(kind.param);
                         });

TEST(ThreadsThatShareABuffer, HaveTheResultsThatTheyWouldHaveAlone) {
  const TempFolder results;
  const TimingLog log = autotune(hostProgram("crowd"), results);
  // Those of the last rounds, at least, were not in the way of each other.
  EXPECT_EQ(log.rows.size(), 1u);
}

TEST(LaunchesThatWaitForTheApplication, RunAloneAndComeToAnEnd) {
  const TempFolder results;
  const TimingLog log = autotune(hostProgram("gates"), results);
  // Those of 64 wait for what the application has yet to do.
  EXPECT_EQ(log.rows.count("accumulate,1024,,,64,,"), 0u);
  const auto &tuned = log.rows.at("accumulate,1024,,,32,,");
  EXPECT_EQ(tuned.at("baseline"), 1u);
  EXPECT_EQ(tuned.at("g0S4"), 1u);
  EXPECT_EQ(log.rows.at("accumulate,1024,,,4,,").at("baseline"), 1u);
}
