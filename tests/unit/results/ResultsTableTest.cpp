// Tests of autotune.csv as text, and of the line numbers that the report shows.

#include "results/Report.h"

#include "Configs.h"

#include <gtest/gtest.h>

using namespace corvane;
using namespace corvane::test;

static constexpr const char *header =
    "kernel,x_global,y_global,z_global,x_local,y_local,z_local,coarsed_kernel,"
    "time,outlier\n";

/// The rows of one ranked configuration.
static std::string rowsOf(const RankedConfig &config) {
  const std::string text = written([&](llvm::raw_ostream &out) {
    ResultsTable table(out);
    table.addRows(config);
  });
  EXPECT_EQ(text.substr(0, std::string(header).size()), header);
  return text.substr(std::string(header).size());
}

TEST(ResultsTable, HoldsOnlyItsHeaderWithoutConfigurations) {
  EXPECT_EQ(written([](llvm::raw_ostream &out) { ResultsTable table(out); }),
            header);
}

TEST(ResultsTable, ListsTheFastestVersionFirstAndMarksOutliers) {
  EXPECT_EQ(
      rowsOf(rankedConfig("k", {{"baseline", {12.345, 40}}, {"g0S4", {9.5}}})),
      "k,1024,,,64,,,g0S4,9.5, \n"
      "k,1024,,,64,,,baseline,12.345, \n"
      "k,1024,,,64,,,baseline,40,*\n");
}

TEST(ResultsTable, ListsTimesAscendingAndNotAsTheyCame) {
  EXPECT_EQ(rowsOf(rankedConfig("k", {{"baseline", {3, 1, 2}}})),
            "k,1024,,,64,,,baseline,1, \n"
            "k,1024,,,64,,,baseline,2, \n"
            "k,1024,,,64,,,baseline,3, \n");
}

TEST(ResultsTable, EndsTheRowOfNoOutlierWithABlank) {
  EXPECT_EQ(rowsOf(rankedConfig("k", {{"baseline", {10, 30}}})),
            "k,1024,,,64,,,baseline,10, \n"
            "k,1024,,,64,,,baseline,30, \n");
}

TEST(ResultsTable, WritesTimesWithSixSignificantDigits) {
  EXPECT_EQ(rowsOf(rankedConfig(
                "k", {{"baseline", {12.345, 1234.567, 40, 1000000, 0.00001}}})),
            "k,1024,,,64,,,baseline,1e-05, \n"
            "k,1024,,,64,,,baseline,12.345,*\n"
            "k,1024,,,64,,,baseline,40,*\n"
            "k,1024,,,64,,,baseline,1234.57,*\n"
            "k,1024,,,64,,,baseline,1e+06,*\n");
}

TEST(ResultsTable, RepeatsTheKeyAsItWasRead) {
  RankedConfig config = rankedConfig("a b", {{"baseline", {1}}});
  config.launchKey.xGlobal = "0064";
  config.launchKey.yGlobal = "y";
  config.launchKey.zLocal = "\xff";
  EXPECT_EQ(rowsOf(config), "a b,0064,y,,64,,\xff,baseline,1, \n");
}

TEST(ResultsTable, CountsRowsFromOneWithoutTheHeader) {
  written([](llvm::raw_ostream &out) {
    ResultsTable table(out);
    const LineRange first = table.addRows(
        rankedConfig("a", {{"baseline", {1, 2, 3}}, {"g0S4", {1, 2}}}));
    EXPECT_EQ(first.first, 1U);
    EXPECT_EQ(first.last, 5U);
    const LineRange second =
        table.addRows(rankedConfig("b", {{"baseline", {1}}}));
    EXPECT_EQ(second.first, 6U);
    EXPECT_EQ(second.last, 6U);
  });
}

TEST(ResultsTable, NeverWritesInfinity) {
  const double huge = 1.7e308;
  EXPECT_EQ(rowsOf(rankedConfig("k", {{"baseline", {huge, huge}}})),
            "k,1024,,,64,,,baseline,1.7e+308, \n"
            "k,1024,,,64,,,baseline,1.7e+308, \n");
}
