// Tests of the table page, byte for byte.

#include "results/report/Pages.h"

#include "Configs.h"

#include <gmock/gmock.h>

using namespace corvane;
using namespace corvane::test;
using testing::HasSubstr;
using testing::Not;

static constexpr const char *lime = "<tbody style=\"background-color:lime\">\n";
static constexpr const char *orange =
    "<tbody style=\"background-color:orange\">\n";
static constexpr const char *faded =
    "<tbody style=\"filter:alpha(opacity=40);-moz-opacity:.40;opacity:.40;\">"
    "\n";

static std::string pageOf(const RankedConfig &config, LineRange lines = {}) {
  return written(
      [&](llvm::raw_ostream &out) { writeTablePage(out, config, lines); });
}

/// What follows the column names, without the last tags.
static std::string bodyOf(const RankedConfig &config) {
  const std::string page = pageOf(config);
  const std::string before = "<th>stddev</th>\n";
  const std::string after = "</tbody>\n</table></body></html>\n";
  const std::size_t begin = page.find(before) + before.size();
  EXPECT_EQ(page.substr(page.size() - after.size()), after);
  return page.substr(begin, page.size() - after.size() - begin);
}

/// The row of a version that ran once, exactly as fast as the original.
static std::string plainRow(const std::string &name, const std::string &time,
                            const std::string &speedup) {
  std::string row =
      "<tr align=\"center\"><th>" + name + "</th><td align=\"center\">1/1</td>";
  const std::string cells = "<td> " + time + " </td><td> " + speedup + " </td>";
  for (int i = 0; i != 4; ++i)
    row += cells;
  return row + "<td> 0.000 </td>";
}

TEST(TablePage, ShowsAConfigurationByteForByte) {
  EXPECT_EQ(
      pageOf(rankedConfig("k", {{"baseline", {40, 12.345}}, {"g0S4", {9.5}}}),
             {4, 6}),
      "<html><body>\n"
      "<table style=\"border:3px solid\" align=\"left\" cellpadding=\"5\" "
      "frame=\"border\" rules=\"groups\">\n"
      "<colgroup></colgroup>\n"
      "<colgroup></colgroup>\n"
      "<colgroup span = \"2\"></colgroup>\n"
      "<colgroup span = \"2\"></colgroup>\n"
      "<colgroup span = \"2\"></colgroup>\n"
      "<colgroup span = \"2\"></colgroup>\n"
      "<thead> <th colspan = \"11\" align=\"left\">kk [ x:1024/64 ] "
      "called 1 times<a href=\"../autotune.csv\"> (See details (line 4-6)) "
      "</a> </th> <tr> </thead>\n"
      "<th>Version</th><th>NumSamples/Total</th><th>Min</th><th>Speedup</th>"
      "<th>Max</th><th>Speedup</th><th>Median</th><th>Speedup</th>"
      "<th>Mean</th><th>Speedup</th><th>stddev</th>\n"
      "<tbody style=\"background-color:lime\">\n"
      "<tr align=\"center\"><th>g0S4</th><td align=\"center\">1/1</td>"
      "<td> 9.500 </td><td> 1.3x </td>"
      "<td> 9.500 </td><td> 4.2x </td>"
      "<td> 9.500 </td><td> 4.2x </td>"
      "<td> 9.500 </td><td> 2.8x </td>"
      "<td> 0.000 </td>"
      "</tbody>\n"
      "<tbody style=\"filter:alpha(opacity=40);-moz-opacity:.40;opacity:.40;\">"
      "\n"
      "<tr align=\"center\"><th>baseline</th><td align=\"center\">1/1</td>"
      "<td> 12.345 </td><td> 1.0x </td>"
      "<td> 40.000 </td><td> 1.0x </td>"
      "<td> 40.000 </td><td> 1.0x </td>"
      "<td> 26.172 </td><td> 1.0x </td>"
      "<td> 13.828 </td>"
      "</tbody>\n"
      "</table></body></html>\n");
}

TEST(TablePage, ShowsOnlyAFadedGroupWhenOnlyTheOriginalRan) {
  EXPECT_EQ(bodyOf(rankedConfig("k", {{"baseline", {5}}})),
            faded + plainRow("baseline", "5.000", "1.0x"));
}

TEST(TablePage, ShowsNoLimeGroupWhenTheOriginalIsFastest) {
  EXPECT_EQ(bodyOf(rankedConfig("k", {{"baseline", {5}}, {"g0S4", {10}}})),
            faded + plainRow("baseline", "5.000", "1.0x") + "</tbody>\n" +
                orange + plainRow("g0S4", "10.000", "0.5x"));
}

TEST(TablePage, ShowsLimeThenFadedThenOrange) {
  EXPECT_EQ(bodyOf(rankedConfig("k", {{"a", {1}},
                                      {"b", {2}},
                                      {"baseline", {4}},
                                      {"c", {8}},
                                      {"d", {10}}})),
            lime + plainRow("a", "1.000", "4.0x") +
                plainRow("b", "2.000", "2.0x") + "</tbody>\n" + faded +
                plainRow("baseline", "4.000", "1.0x") + "</tbody>\n" + orange +
                plainRow("c", "8.000", "0.5x") +
                plainRow("d", "10.000", "0.4x"));
}

TEST(TablePage, ShowsNoSpeedupWithoutABaseline) {
  const RankedConfig config = rankedConfig("k", {{"a", {1}}, {"b", {2}}});
  EXPECT_EQ(bodyOf(config), lime + plainRow("a", "1.000", "0.0x") +
                                plainRow("b", "2.000", "0.0x"));
}

TEST(TablePage, ShowsNoSpeedupWhereATimeIsZero) {
  EXPECT_EQ(bodyOf(rankedConfig("k", {{"a", {0}}, {"baseline", {2}}})),
            lime + plainRow("a", "0.000", "0.0x") + "</tbody>\n" + faded +
                plainRow("baseline", "2.000", "1.0x"));
  EXPECT_EQ(bodyOf(rankedConfig("k", {{"a", {-2}}, {"baseline", {0}}})),
            lime + plainRow("a", "-2.000", "0.0x") + "</tbody>\n" + faded +
                plainRow("baseline", "0.000", "0.0x"));
}

TEST(TablePage, ShowsNeitherInfinityNorNan) {
  const std::string page = pageOf(rankedConfig(
      "k",
      {{"a", {5e-324}}, {"b", {1.7e308, 1.7e308}}, {"baseline", {1e308}}}));
  EXPECT_THAT(page, HasSubstr("<td> 0.000 </td><td> 0.0x </td>"));
  EXPECT_THAT(page, Not(HasSubstr("inf")));
  EXPECT_THAT(page, Not(HasSubstr("nan")));
}

TEST(TablePage, ShowsTheSmallestCountForAllVersions) {
  const std::string page = pageOf(
      rankedConfig("k", {{"baseline", {3, 3, 3}}, {"g0S4", {1, 1}}}), {1, 5});
  EXPECT_THAT(page, HasSubstr("called 2 times"));
  EXPECT_THAT(page, HasSubstr("<th>g0S4</th><td align=\"center\">2/2</td>"));
  EXPECT_THAT(page,
              HasSubstr("<th>baseline</th><td align=\"center\">2/2</td>"));
  EXPECT_THAT(page, HasSubstr("(line 1-5)"));
}

TEST(TablePage, KeepsHostileNamesInTheirPlaces) {
  RankedConfig hostile = rankedConfig(
      "<b>", {{"</th><script>x()</script>", {1}}, {"baseline", {2}}});
  hostile.launchKey.xGlobal = "\"1";
  const std::string page = pageOf(hostile);
  EXPECT_THAT(page, HasSubstr("align=\"left\">&#60;b&#62;&#60;b&#62; [ "
                              "x:&#34;1/64 ] called 1 times<a "));
  EXPECT_THAT(page, HasSubstr("<th>&#60;/th&#62;&#60;script&#62;x()&#60;/"
                              "script&#62;</th><td "));
}
