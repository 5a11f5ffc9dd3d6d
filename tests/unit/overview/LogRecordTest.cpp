// Tests of raw timing logs that are taken for records.

#include "results/overview/LogRecord.h"

#include <gmock/gmock.h>

using namespace corvane;
using testing::SizeIs;

static ConfigResults
configOf(const char *fields,
         std::map<std::string, Samples, std::less<>> versions) {
  return {splitFields(fields), std::move(versions)};
}

TEST(LogRecord, HasTheSamplesOfTheLog) {
  const RunRecord record = recordOfLog({configOf(
      "matmul,512,256,,16,4,", {{"baseline", {3.0, 2.0}}, {"g0S4", {1.0}}})});
  EXPECT_EQ(record.problemCount, 0U);
  ASSERT_THAT(record.configurations, SizeIs(1));
  const RunConfiguration &configuration = record.configurations.at(0);
  EXPECT_EQ(configuration.line.kernel, "matmul");
  EXPECT_EQ(sizesText(configuration.line.sizes), "512x256 / 16x4");
  ASSERT_THAT(configuration.samples, SizeIs(3));
  EXPECT_EQ(configuration.samples[0].version, "");
  EXPECT_EQ(configuration.samples[0].microseconds, 3.0);
  EXPECT_EQ(configuration.samples[2].version, "g0S4");
  ASSERT_TRUE(record.end);
  EXPECT_EQ(record.end->launches, 2U);
  ASSERT_THAT(record.programs.at(0).kernels, SizeIs(1));
  EXPECT_THAT(record.programs.at(0).kernels[0].variants,
              testing::ElementsAre("g0S4"));
}

TEST(LogRecord, LeavesOutWhatIsNoLaunch) {
  const RunRecord record = recordOfLog({
      configOf("k,,,,,,", {{"baseline", {1.0}}}),
      configOf("k,64,,,x,,", {{"baseline", {1.0}}}),
      configOf("k,-1,,,0,,", {{"baseline", {1.0}}}),
      configOf("k,99999999999999999999999,,,0,,", {{"baseline", {1.0}}}),
      configOf("k,64,,,0,,", {{"baseline", {0.0, -1.0, 2.0}}}),
  });
  ASSERT_THAT(record.configurations, SizeIs(1));
  EXPECT_THAT(record.configurations.at(0).samples, SizeIs(1));
  EXPECT_EQ(record.problemCount, 6U);
}

TEST(LogRecord, IsEmptyForAnEmptyLog) {
  const RunRecord record = recordOfLog({});
  EXPECT_TRUE(record.process);
  EXPECT_TRUE(record.configurations.empty());
}
