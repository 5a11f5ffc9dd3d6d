// Tests that programs in which several commands work on one buffer at the same
// time have the results that they have alone.

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
  // At least the first launch is tuned, because nothing is in flight.
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
  // At least some launches of the last rounds did not disturb each other.
  EXPECT_EQ(log.rows.size(), 1u);
}

TEST(LaunchesThatWaitForTheApplication, RunAloneAndComeToAnEnd) {
  const TempFolder results;
  const TimingLog log = autotune(hostProgram("gates"), results);
  // The launches with a local size of 64 wait for an event of the
  // application's.
  EXPECT_EQ(log.rows.count("accumulate,1024,,,64,,"), 0u);
  const auto &tuned = log.rows.at("accumulate,1024,,,32,,");
  EXPECT_EQ(tuned.at("baseline"), 1u);
  EXPECT_EQ(tuned.at("g0S4"), 1u);
  EXPECT_EQ(log.rows.at("accumulate,1024,,,4,,").at("baseline"), 1u);
}
