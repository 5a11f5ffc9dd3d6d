// The raw timing log read back into configurations.

#include "results/ResultsReader.h"

#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;

static std::vector<ConfigResults> configsOf(const std::string &log) {
  TempFolder folder;
  EXPECT_TRUE(folder.write("log", log));
  ReportJob job;
  job.logPath = folder.file("log");
  EXPECT_EQ(readCSV(job), 0);
  return job.configs;
}

/// The configurations of a log with the usual header.
static std::vector<ConfigResults> configsOfRows(const std::string &rows) {
  return configsOf("kernel,x_global,y_global,z_global,x_local,y_local,z_local,"
                   "coarsed_kernel,time\n" +
                   rows);
}

static std::vector<std::string> keyOf(const ConfigResults &config) {
  return {config.kernel, config.xGlobal, config.yGlobal, config.zGlobal,
          config.xLocal, config.yLocal,  config.zLocal};
}

static std::vector<std::string> versionNames(const ConfigResults &config) {
  std::vector<std::string> names;
  for (const auto &[name, stats] : config.versions)
    names.push_back(name);
  return names;
}

TEST(ReadCSV, FindsNoConfigurationWithoutALog) {
  TempFolder folder;
  ReportJob job;
  job.logPath = folder.file("missing");
  EXPECT_EQ(readCSV(job), 0);
  EXPECT_THAT(job.configs, IsEmpty());
}

TEST(ReadCSV, FindsNoConfigurationBehindAHeaderAlone) {
  EXPECT_THAT(configsOfRows(""), IsEmpty());
  EXPECT_THAT(configsOf(""), IsEmpty());
}

TEST(ReadCSV, DoesNotLookAtTheFirstLine) {
  EXPECT_THAT(configsOf("k,1,,,1,,,baseline,1.000\n"), IsEmpty());
  EXPECT_EQ(configsOf("\nk,1,,,1,,,baseline,1.000\n").size(), 1U);
}

TEST(ReadCSV, SplitsARowIntoItsFields) {
  const auto configs = configsOfRows("k,8,7,6,4,3,2,g0S4,12.345\n");
  ASSERT_EQ(configs.size(), 1U);
  EXPECT_THAT(keyOf(configs[0]),
              ElementsAre("k", "8", "7", "6", "4", "3", "2"));
  ASSERT_THAT(versionNames(configs[0]), ElementsAre("g0S4"));
  EXPECT_THAT(configs[0].versions.at("g0S4").samples, ElementsAre(12.345));
  EXPECT_THAT(configs[0].ranking, IsEmpty());
}

TEST(ReadCSV, KeepsConfigurationsInTheOrderInWhichTheyFirstOccur) {
  const auto configs = configsOfRows("z,1,,,1,,,baseline,1.000\n"
                                     "a,1,,,1,,,baseline,2.000\n"
                                     "z,1,,,1,,,baseline,3.000\n"
                                     "m,1,,,1,,,baseline,4.000\n");
  ASSERT_EQ(configs.size(), 3U);
  EXPECT_EQ(configs[0].kernel, "z");
  EXPECT_EQ(configs[1].kernel, "a");
  EXPECT_EQ(configs[2].kernel, "m");
}

TEST(ReadCSV, OrdersVersionsByTheirBytes) {
  const auto configs = configsOfRows("k,1,,,1,,,g0S4,1.000\n"
                                     "k,1,,,1,,,\xc3\xa4,1.000\n"
                                     "k,1,,,1,,,g0S16,1.000\n"
                                     "k,1,,,1,,,G0S4,1.000\n"
                                     "k,1,,,1,,,baseline,1.000\n");
  ASSERT_EQ(configs.size(), 1U);
  EXPECT_THAT(versionNames(configs[0]),
              ElementsAre("G0S4", "baseline", "g0S16", "g0S4", "\xc3\xa4"));
}

TEST(ReadCSV, KeepsSamplesInTheOrderOfTheLog) {
  const auto configs = configsOfRows("k,1,,,1,,,baseline,3.000\n"
                                     "k,1,,,1,,,g0S4,9.000\n"
                                     "k,1,,,1,,,baseline,1.000\n"
                                     "k,1,,,1,,,baseline,2.000\n");
  ASSERT_EQ(configs.size(), 1U);
  EXPECT_THAT(configs[0].versions.at("baseline").samples,
              ElementsAre(3.0, 1.0, 2.0));
  EXPECT_THAT(configs[0].versions.at("g0S4").samples, ElementsAre(9.0));
}

TEST(ReadCSV, TellsLaunchesApartThatDifferInLocalSizeOnly) {
  EXPECT_EQ(configsOfRows("k,64,,,8,,,baseline,1.000\n"
                          "k,64,,,4,,,baseline,1.000\n")
                .size(),
            2U);
}

TEST(ReadCSV, TellsSizesApartThatDifferInTheirTextOnly) {
  EXPECT_EQ(configsOfRows("k,64,,,8,,,baseline,1.000\n"
                          "k,064,,,8,,,baseline,1.000\n")
                .size(),
            2U);
}

TEST(ReadCSV, DoesNotMixUpWhichFieldATextStandsIn) {
  EXPECT_EQ(configsOfRows("k,1,,,,,,baseline,1.000\n"
                          "k,,1,,,,,baseline,1.000\n"
                          "k1,,,,,,,baseline,1.000\n")
                .size(),
            3U);
}

TEST(ReadCSV, LetsTheLastFieldHaveCommas) {
  const auto configs = configsOfRows("k,1,,,1,,,baseline,2.5,7,x\n");
  ASSERT_EQ(configs.size(), 1U);
  EXPECT_THAT(configs[0].versions.at("baseline").samples, ElementsAre(2.5));
}

TEST(ReadCSV, TakesFieldsAsEmptyThatALineDoesNotHave) {
  const auto configs = configsOfRows("k,1\n"
                                     "k,1,,,,,,,2.000\n"
                                     "k,1,,,,,,\n");
  ASSERT_EQ(configs.size(), 1U);
  EXPECT_THAT(keyOf(configs[0]), ElementsAre("k", "1", "", "", "", "", ""));
  ASSERT_THAT(versionNames(configs[0]), ElementsAre(""));
  EXPECT_THAT(configs[0].versions.at("").samples, ElementsAre(0.0, 2.0, 0.0));
}

TEST(ReadCSV, TakesAnEmptyLineForARow) {
  const auto configs = configsOfRows("k,1,,,1,,,baseline,1.000\n"
                                     "\n"
                                     "k,1,,,1,,,baseline,1.000\n");
  ASSERT_EQ(configs.size(), 2U);
  EXPECT_THAT(keyOf(configs[1]), ElementsAre("", "", "", "", "", "", ""));
}

TEST(ReadCSV, TakesATimeThatIsNoNumberAsZero) {
  const auto configs = configsOfRows("k,1,,,1,,,baseline,abc\n"
                                     "k,1,,,1,,,baseline,\n"
                                     "k,1,,,1,,,baseline,nan\n"
                                     "k,1,,,1,,,baseline,1e999\n"
                                     "k,1,,,1,,,baseline,inf\n");
  ASSERT_EQ(configs.size(), 1U);
  EXPECT_THAT(configs[0].versions.at("baseline").samples,
              ElementsAre(0.0, 0.0, 0.0, 0.0, 0.0));
}

TEST(ReadCSV, ReadsALogThatWasSavedWithCarriageReturns) {
  const auto configs = configsOf("header\r\nk,1,,,1,,,baseline,1.500\r\n");
  ASSERT_EQ(configs.size(), 1U);
  EXPECT_THAT(configs[0].versions.at("baseline").samples, ElementsAre(1.5));
}

TEST(ReadCSV, ReadsALastLineWithoutLineFeed) {
  const auto configs = configsOfRows("k,1,,,1,,,baseline,1.000\n"
                                     "k,1,,,1,,,baseline,2.0");
  ASSERT_EQ(configs.size(), 1U);
  EXPECT_THAT(configs[0].versions.at("baseline").samples,
              ElementsAre(1.0, 2.0));
}

TEST(ReadCSV, TakesAnyBytes) {
  using namespace std::string_literals;
  const auto configs = configsOfRows("a\0b,\xff,,,1,,,v\0,1.000\n"s
                                     "a,\xff,,,1,,,v\0,1.000\n"s);
  ASSERT_EQ(configs.size(), 2U);
  EXPECT_EQ(configs[0].kernel, "a\0b"s);
  EXPECT_THAT(versionNames(configs[0]), ElementsAre("v\0"s));
}

TEST(ReadCSV, TakesALineOfAnyLength) {
  const std::string kernel(700'000, 'k');
  const auto configs = configsOfRows(kernel + ",1,,,1,,,baseline,1.000\n" +
                                     std::string(700'000, ',') + "\n");
  ASSERT_EQ(configs.size(), 2U);
  EXPECT_EQ(configs[0].kernel, kernel);
  EXPECT_EQ(configs[1].kernel, "");
}

TEST(ReadCSV, AddsToTheConfigurationsOfTheJob) {
  TempFolder folder;
  ASSERT_TRUE(folder.write("log", "header\nk,1,,,1,,,baseline,1.000\n"));
  ReportJob job;
  job.logPath = folder.file("log");
  job.configs.emplace_back();
  EXPECT_EQ(readCSV(job), 0);
  ASSERT_EQ(job.configs.size(), 2U);
  EXPECT_EQ(job.configs[1].kernel, "k");
}

TEST(ReadCSV, KeepsManyConfigurationsApart) {
  std::string rows;
  for (int round = 0; round != 3; ++round)
    for (int i = 0; i != 5000; ++i)
      rows += "k," + std::to_string(i) + ",,,1,,,baseline," +
              std::to_string(i + round) + "\n";
  const auto configs = configsOfRows(rows);
  ASSERT_EQ(configs.size(), 5000U);
  for (std::size_t i = 0; i != configs.size(); ++i) {
    const double time = static_cast<double>(i);
    ASSERT_EQ(configs[i].xGlobal, std::to_string(i));
    ASSERT_THAT(configs[i].versions.at("baseline").samples,
                ElementsAre(time, time + 1, time + 2));
  }
}
