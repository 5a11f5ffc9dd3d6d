// Tests of the graph page, byte for byte.

#include "results/report/Pages.h"

#include "Configs.h"

#include <gmock/gmock.h>

using namespace corvane;
using namespace corvane::test;
using testing::HasSubstr;
using testing::Not;

static std::string pageOf(const RankedConfig &config) {
  return written([&](llvm::raw_ostream &out) {
    writeGraphPage(out, config, "C:/tools/x");
  });
}

TEST(GraphPage, ShowsAConfigurationByteForByte) {
  EXPECT_EQ(
      pageOf(rankedConfig("k", {{"baseline", {40, 12.345}},
                                {"g0S4", {9.5, 1234.567, 9}},
                                {"g0S2", {1, 2}}})),
      "<!DOCTYPE html><html>\n"
      "<head>\n"
      "<script type=\"text/javascript\" "
      "src=\"file://C:/tools/x/dygraph-combined.js\"></script>\n"
      "<style type=\"text/css\">\n"
      "#graphdiv { position: absolute; left: 10px; right: 100px; top: 10px; "
      "bottom: 10px;}\n"
      "#checkdiv { float: right; width: 80px;}\n"
      "</style>\n"
      "</head>\n"
      "<body>\n"
      "<div id=\"graphdiv\"></div>\n"
      "<div id=\"checkdiv\">\n"
      "<p><b> Show series: </b><br/>\n"
      "<input type=checkbox id=\"0\" checked onClick=\"change(this)\">"
      "<label for=\"0\"> g0S2 </label><br/>\n"
      "<input type=checkbox id=\"1\" checked onClick=\"change(this)\">"
      "<label for=\"1\"> baseline </label><br/>\n"
      "<input type=checkbox id=\"2\" onClick=\"change(this)\">"
      "<label for=\"2\"> g0S4 </label><br/>\n"
      "</p></div><script type=\"text/javascript\">\n"
      "g = new Dygraph(document.getElementById(\"graphdiv\"),"
      "\"iter,g0S2,baseline,g0S4\\n\"\n"
      "+ \"1,1,40,9.5\\n\"\n"
      "+ \"2,2,12.345,1234.57\\n\"\n"
      ",\n"
      "{ includeZero: true, digitsAfterDecimal: 3, drawPoints: true, "
      "ylabel: 'Time:(us)', legend: 'always', visibility: [true,true,false]"
      "});\n"
      "function change(el) { g.setVisibility(parseInt(el.id), el.checked);}\n"
      "</script>\n"
      "</body></html>");
}

TEST(GraphPage, ShowsOnlyTheFastestVersionAndTheOriginalAtFirst) {
  const std::string page = pageOf(rankedConfig(
      "k", {{"a", {4}}, {"b", {1}}, {"c", {2}}, {"baseline", {3}}}));
  EXPECT_THAT(page, HasSubstr("visibility: [true,false,true,false]"));
  EXPECT_THAT(page, HasSubstr("id=\"0\" checked"));
  EXPECT_THAT(page, Not(HasSubstr("id=\"1\" checked")));
  EXPECT_THAT(page, HasSubstr("id=\"2\" checked"));
  EXPECT_THAT(page, Not(HasSubstr("id=\"3\" checked")));
}

TEST(GraphPage, ShowsTheOriginalOnceWhenItIsTheFastest) {
  EXPECT_THAT(pageOf(rankedConfig("k", {{"a", {4}}, {"baseline", {3}}})),
              HasSubstr("visibility: [true,false]"));
}

TEST(GraphPage, PlotsNoMoreSamplesThanEveryVersionHas) {
  const std::string page =
      pageOf(rankedConfig("k", {{"a", {1, 2, 3}}, {"baseline", {5}}}));
  EXPECT_THAT(page, HasSubstr("\"iter,a,baseline\\n\"\n+ \"1,1,5\\n\"\n,\n"));
}

TEST(GraphPage, KeepsHostileNamesInTheirPlaces) {
  const std::string page = pageOf(
      rankedConfig("k", {{"\"+x()+\"\\", {1}}, {"</script><script>x()", {2}}}));
  EXPECT_THAT(page, HasSubstr("\"iter,\\uFF02+x()+\\uFF02\\u005C,\\uFF1C/"
                              "script\\uFF1E\\uFF1Cscript\\uFF1Ex()\\n\"\n"));
  EXPECT_THAT(page, HasSubstr("<label for=\"0\"> &#34;+x()+&#34;\\ </label>"));
  EXPECT_THAT(page, HasSubstr("<label for=\"1\"> &#60;/script&#62;&#60;script"
                              "&#62;x() </label>"));
}

TEST(GraphPage, KeepsTheInstallLocationInItsAttribute) {
  const std::string page = written([](llvm::raw_ostream &out) {
    writeGraphPage(out, rankedConfig("k", {}), "/opt/\" onload=\"x()");
  });
  EXPECT_THAT(page, HasSubstr("src=\"file:///opt/&#34; onload=&#34;x()/"
                              "dygraph-combined.js\"></script>"));
}
