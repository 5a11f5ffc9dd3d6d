// Tests of the raw timing log, read back into configurations.

#include "results/RawTimingLog.h"

#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <limits>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;

static std::vector<ConfigResults> configsOf(const std::string &log) {
  TempFolder folder;
  EXPECT_TRUE(folder.write("log", log));
  std::vector<ConfigResults> configs;
  EXPECT_EQ(llvm::toString(readRawLog(folder.file("log"), configs)), "");
  return configs;
}

/// The configurations of a log with the usual header.
static std::vector<ConfigResults> configsOfRows(const std::string &rows) {
  return configsOf("kernel,x_global,y_global,z_global,x_local,y_local,z_local,"
                   "coarsed_kernel,time\n" +
                   rows);
}

static std::vector<std::string> fieldsOf(const ConfigResults &config) {
  std::vector<std::string> texts;
  for (const std::string *field : config.launchKey.fields())
    texts.push_back(*field);
  return texts;
}

static std::vector<std::string> versionNames(const ConfigResults &config) {
  std::vector<std::string> names;
  for (const auto &[name, samples] : config.versions)
    names.push_back(name);
  return names;
}

TEST(ReadRawLog, FindsNoConfigurationWithoutALogAndSaysWhy) {
  TempFolder folder;
  std::vector<ConfigResults> configs;
  const std::string missing = folder.file("missing");
  EXPECT_EQ(llvm::toString(readRawLog(missing, configs)),
            missing + ": cannot be opened");
  EXPECT_THAT(configs, IsEmpty());
}

TEST(ReadRawLog, EndsAtALineThatIsTooLongAndSaysSo) {
  TempFolder folder;
  const std::string log = folder.file("log");
  ASSERT_TRUE(folder.write("log", "header\nk,1,,,1,,,baseline,1.000\n" +
                                      std::string(20'000'000, 'x')));
  std::vector<ConfigResults> configs;
  EXPECT_EQ(llvm::toString(readRawLog(log, configs)),
            log + ": has a line that is too long");
  EXPECT_EQ(configs.size(), 1U);
}

TEST(ReadRawLog, FindsNoConfigurationAfterAHeaderAlone) {
  EXPECT_THAT(configsOfRows(""), IsEmpty());
  EXPECT_THAT(configsOf(""), IsEmpty());
}

TEST(ReadRawLog, DoesNotLookAtTheFirstLine) {
  EXPECT_THAT(configsOf("k,1,,,1,,,baseline,1.000\n"), IsEmpty());
  EXPECT_EQ(configsOf("\nk,1,,,1,,,baseline,1.000\n").size(), 1U);
}

TEST(ReadRawLog, SplitsARowIntoItsFields) {
  const auto configs = configsOfRows("k,8,7,6,4,3,2,g0S4,12.345\n");
  ASSERT_EQ(configs.size(), 1U);
  EXPECT_THAT(fieldsOf(configs[0]),
              ElementsAre("k", "8", "7", "6", "4", "3", "2"));
  ASSERT_THAT(versionNames(configs[0]), ElementsAre("g0S4"));
  EXPECT_THAT(configs[0].versions.at("g0S4"), ElementsAre(12.345));
}

TEST(ReadRawLog, KeepsConfigurationsInTheOrderInWhichTheyFirstOccur) {
  const auto configs = configsOfRows("z,1,,,1,,,baseline,1.000\n"
                                     "a,1,,,1,,,baseline,2.000\n"
                                     "z,1,,,1,,,baseline,3.000\n"
                                     "m,1,,,1,,,baseline,4.000\n");
  ASSERT_EQ(configs.size(), 3U);
  EXPECT_EQ(configs[0].launchKey.kernel, "z");
  EXPECT_EQ(configs[1].launchKey.kernel, "a");
  EXPECT_EQ(configs[2].launchKey.kernel, "m");
}

TEST(ReadRawLog, OrdersVersionsByTheirBytes) {
  const auto configs = configsOfRows("k,1,,,1,,,g0S4,1.000\n"
                                     "k,1,,,1,,,\xc3\xa4,1.000\n"
                                     "k,1,,,1,,,g0S16,1.000\n"
                                     "k,1,,,1,,,G0S4,1.000\n"
                                     "k,1,,,1,,,baseline,1.000\n");
  ASSERT_EQ(configs.size(), 1U);
  EXPECT_THAT(versionNames(configs[0]),
              ElementsAre("G0S4", "baseline", "g0S16", "g0S4", "\xc3\xa4"));
}

TEST(ReadRawLog, KeepsSamplesInTheOrderOfTheLog) {
  const auto configs = configsOfRows("k,1,,,1,,,baseline,3.000\n"
                                     "k,1,,,1,,,g0S4,9.000\n"
                                     "k,1,,,1,,,baseline,1.000\n"
                                     "k,1,,,1,,,baseline,2.000\n");
  ASSERT_EQ(configs.size(), 1U);
  EXPECT_THAT(configs[0].versions.at("baseline"), ElementsAre(3.0, 1.0, 2.0));
  EXPECT_THAT(configs[0].versions.at("g0S4"), ElementsAre(9.0));
}

TEST(ReadRawLog, TellsLaunchesApartThatDifferInLocalSizeOnly) {
  EXPECT_EQ(configsOfRows("k,64,,,8,,,baseline,1.000\n"
                          "k,64,,,4,,,baseline,1.000\n")
                .size(),
            2U);
}

TEST(ReadRawLog, TellsSizesApartThatDifferInTheirTextOnly) {
  EXPECT_EQ(configsOfRows("k,64,,,8,,,baseline,1.000\n"
                          "k,064,,,8,,,baseline,1.000\n")
                .size(),
            2U);
}

TEST(ReadRawLog, DoesNotMixUpWhichFieldATextIsIn) {
  EXPECT_EQ(configsOfRows("k,1,,,,,,baseline,1.000\n"
                          "k,,1,,,,,baseline,1.000\n"
                          "k1,,,,,,,baseline,1.000\n")
                .size(),
            3U);
}

TEST(ReadRawLog, LetsTheLastFieldHaveCommas) {
  const auto configs = configsOfRows("k,1,,,1,,,baseline,2.5,7,x\n");
  ASSERT_EQ(configs.size(), 1U);
  EXPECT_THAT(configs[0].versions.at("baseline"), ElementsAre(2.5));
}

TEST(ReadRawLog, TakesFieldsAsEmptyThatALineDoesNotHave) {
  const auto configs = configsOfRows("k,1\n"
                                     "k,1,,,,,,,2.000\n"
                                     "k,1,,,,,,\n");
  ASSERT_EQ(configs.size(), 1U);
  EXPECT_THAT(fieldsOf(configs[0]), ElementsAre("k", "1", "", "", "", "", ""));
  ASSERT_THAT(versionNames(configs[0]), ElementsAre(""));
  EXPECT_THAT(configs[0].versions.at(""), ElementsAre(0.0, 2.0, 0.0));
}

TEST(ReadRawLog, TakesAnEmptyLineForARow) {
  const auto configs = configsOfRows("k,1,,,1,,,baseline,1.000\n"
                                     "\n"
                                     "k,1,,,1,,,baseline,1.000\n");
  ASSERT_EQ(configs.size(), 2U);
  EXPECT_THAT(fieldsOf(configs[1]), ElementsAre("", "", "", "", "", "", ""));
}

TEST(ReadRawLog, TakesATimeThatIsNoNumberAsZero) {
  const auto configs = configsOfRows("k,1,,,1,,,baseline,abc\n"
                                     "k,1,,,1,,,baseline,\n"
                                     "k,1,,,1,,,baseline,nan\n"
                                     "k,1,,,1,,,baseline,1e999\n"
                                     "k,1,,,1,,,baseline,inf\n");
  ASSERT_EQ(configs.size(), 1U);
  EXPECT_THAT(configs[0].versions.at("baseline"),
              ElementsAre(0.0, 0.0, 0.0, 0.0, 0.0));
}

TEST(ReadRawLog, ReadsALogThatWasSavedWithCarriageReturns) {
  const auto configs = configsOf("header\r\nk,1,,,1,,,baseline,1.500\r\n");
  ASSERT_EQ(configs.size(), 1U);
  EXPECT_THAT(configs[0].versions.at("baseline"), ElementsAre(1.5));
}

TEST(ReadRawLog, ReadsALastLineWithoutLineFeed) {
  const auto configs = configsOfRows("k,1,,,1,,,baseline,1.000\n"
                                     "k,1,,,1,,,baseline,2.0");
  ASSERT_EQ(configs.size(), 1U);
  EXPECT_THAT(configs[0].versions.at("baseline"), ElementsAre(1.0, 2.0));
}

TEST(ReadRawLog, TakesAnyBytes) {
  using namespace std::string_literals;
  const auto configs = configsOfRows("a\0b,\xff,,,1,,,v\0,1.000\n"s
                                     "a,\xff,,,1,,,v\0,1.000\n"s);
  ASSERT_EQ(configs.size(), 2U);
  EXPECT_EQ(configs[0].launchKey.kernel, "a\0b"s);
  EXPECT_THAT(versionNames(configs[0]), ElementsAre("v\0"s));
}

TEST(ReadRawLog, TakesALineOfAnyLength) {
  const std::string kernel(700'000, 'k');
  const auto configs = configsOfRows(kernel + ",1,,,1,,,baseline,1.000\n" +
                                     std::string(700'000, ',') + "\n");
  ASSERT_EQ(configs.size(), 2U);
  EXPECT_EQ(configs[0].launchKey.kernel, kernel);
  EXPECT_EQ(configs[1].launchKey.kernel, "");
}

TEST(ReadRawLog, AddsToTheConfigurationsThatAreThere) {
  TempFolder folder;
  ASSERT_TRUE(folder.write("log", "header\nk,1,,,1,,,baseline,1.000\n"));
  std::vector<ConfigResults> configs(1);
  EXPECT_EQ(llvm::toString(readRawLog(folder.file("log"), configs)), "");
  ASSERT_EQ(configs.size(), 2U);
  EXPECT_EQ(configs[1].launchKey.kernel, "k");
}

TEST(ReadRawLog, KeepsManyConfigurationsApart) {
  std::string rows;
  for (int round = 0; round != 3; ++round)
    for (int i = 0; i != 5000; ++i)
      rows += "k," + std::to_string(i) + ",,,1,,,baseline," +
              std::to_string(i + round) + "\n";
  const auto configs = configsOfRows(rows);
  ASSERT_EQ(configs.size(), 5000U);
  for (std::size_t i = 0; i != configs.size(); ++i) {
    const double time = static_cast<double>(i);
    ASSERT_EQ(configs[i].launchKey.xGlobal, std::to_string(i));
    ASSERT_THAT(configs[i].versions.at("baseline"),
                ElementsAre(time, time + 1, time + 2));
  }
}

TEST(TimeText, HasMicrosecondsWithThreeDecimals) {
  EXPECT_EQ(timeText(0), "0.000");
  EXPECT_EQ(timeText(7), "0.007");
  EXPECT_EQ(timeText(999), "0.999");
  EXPECT_EQ(timeText(1000), "1.000");
  EXPECT_EQ(timeText(12345), "12.345");
  EXPECT_EQ(timeText(2000000), "2000.000");
  EXPECT_EQ(timeText(std::numeric_limits<std::uint64_t>::max()),
            "18446744073709552.000"); // as C's "%.3f" has it
}

TEST(RawLogRow, NamesTheOriginalBaselineAndAVariantByItsSpecText) {
  EXPECT_EQ(rawLogRow("k,1024,,,64,,", "", 12345),
            "k,1024,,,64,,,baseline,12.345\n");
  EXPECT_EQ(rawLogRow("k,1024,,,64,,", "g0S4", 9500),
            "k,1024,,,64,,,g0S4,9.500\n");
}
