// Tests of overviews as JSON and as comma-separated values.

#include "MadeOverview.h"

#include "results/overview/Exports.h"
#include "results/runs/Json.h"

#include <gmock/gmock.h>

using namespace corvane;
using namespace corvane::test;
using testing::HasSubstr;
namespace json = llvm::json;

static json::Value jsonOf(const Overview &overview) {
  std::string text;
  llvm::raw_string_ostream out(text);
  writeOverviewJson(out, overview);
  llvm::Expected<json::Value> value = parseJson(out.str());
  if (value)
    return std::move(*value);
  ADD_FAILURE() << llvm::toString(value.takeError());
  return nullptr;
}

static std::string csvOf(const Overview &overview) {
  std::string text;
  llvm::raw_string_ostream out(text);
  writeOverviewCsv(out, overview);
  return out.str();
}

TEST(OverviewJson, HasEverything) {
  const json::Value value = jsonOf(overviewOf({eventfulRun()}));
  JsonFields all(value.getAsObject());
  EXPECT_EQ(all.text("format"), "corvane-report");
  EXPECT_EQ(all.whole("version"), 1U);
  EXPECT_EQ(all.amount("time"), 1000.0);
  EXPECT_EQ(all.amount("timeWithWinners"), 500.0);
  ASSERT_EQ(all.list("runs").size(), 1U);
  JsonFields run(all.list("runs")[0].getAsObject());
  EXPECT_EQ(run.list("command").size(), 2U);
  EXPECT_TRUE(run.flag("ended"));
  JsonFields configuration(all.list("configurations")[0].getAsObject());
  EXPECT_EQ(configuration.text("kernel"), "scale");
  EXPECT_EQ(configuration.text("winner"), "g0S2");
  EXPECT_EQ(configuration.text("outcome"), "faster");
  ASSERT_EQ(configuration.list("versions").size(), 6U);
  JsonFields wrong(configuration.list("versions")[1].getAsObject());
  EXPECT_EQ(wrong.text("version"), "l0S2");
  EXPECT_EQ(wrong.text("verdict"), "wrong results");
  EXPECT_EQ(wrong.list("samples").size(), 1U);
  EXPECT_NE(wrong.object("difference"), nullptr);
  EXPECT_EQ(all.problem() + configuration.problem() + wrong.problem(), "");
}

TEST(OverviewJson, IsWholeForNothing) {
  const json::Value value = jsonOf(overviewOf({}));
  JsonFields all(value.getAsObject());
  EXPECT_EQ(all.list("configurations").size(), 0U);
  EXPECT_NE(all.text("remark"), "");
  EXPECT_EQ(all.problem(), "");
}

TEST(OverviewCsv, HasARowForEachVersion) {
  const std::string text = csvOf(overviewOf({eventfulRun()}));
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1 + 6);
  EXPECT_THAT(text, HasSubstr("\nscale,1022 / 2,device,1,abc,10,faster,g0S2,"
                              "each work-item does 2 columns,winner,7,50,"));
  EXPECT_THAT(text, HasSubstr(",refused,0,,,,not checked,does not take these "
                              "sizes: 1022 is not a multiple of 256\n"));
}

TEST(OverviewCsv, QuotesWhatWouldEndAField) {
  RunRecord run =
      MadeRun().configuration("a,\"b\"\nc", oneDimension(64)).samples("", 1.0);
  EXPECT_THAT(csvOf(overviewOf({run})), HasSubstr("\n\"a,\"\"b\"\"\nc\",64,"));
}
