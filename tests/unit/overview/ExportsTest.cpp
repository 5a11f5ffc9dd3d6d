// Tests of overviews as JSON and as comma-separated values.

#include "MadeOverview.h"

#include "results/overview/Exports.h"

#include "llvm/Support/JSON.h"

#include <gmock/gmock.h>

using namespace corvane;
using namespace corvane::test;
using testing::HasSubstr;
namespace json = llvm::json;

static json::Value jsonOf(const Overview &overview) {
  std::string text;
  llvm::raw_string_ostream out(text);
  writeOverviewJson(out, overview);
  llvm::Expected<json::Value> value = json::parse(out.str());
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
  const json::Object &all = *value.getAsObject();
  EXPECT_EQ(all.getString("format"), llvm::StringRef("corvane-report"));
  EXPECT_EQ(all.getInteger("version"), std::int64_t(1));
  EXPECT_EQ(all.getNumber("time"), 1000.0);
  EXPECT_EQ(all.getNumber("timeWithWinners"), 500.0);
  ASSERT_EQ(all.getArray("runs")->size(), 1U);
  const json::Object &run = *all.getArray("runs")->front().getAsObject();
  EXPECT_EQ(run.getArray("command")->size(), 2U);
  EXPECT_EQ(run.getBoolean("ended"), true);
  const json::Object &configuration =
      *all.getArray("configurations")->front().getAsObject();
  EXPECT_EQ(configuration.getString("kernel"), llvm::StringRef("scale"));
  EXPECT_EQ(configuration.getString("winner"), llvm::StringRef("g0S2"));
  EXPECT_EQ(configuration.getString("outcome"), llvm::StringRef("faster"));
  const json::Array &versions = *configuration.getArray("versions");
  ASSERT_EQ(versions.size(), 6U);
  const json::Object &wrong = *versions[1].getAsObject();
  EXPECT_EQ(wrong.getString("version"), llvm::StringRef("l0S2"));
  EXPECT_EQ(wrong.getString("verdict"), llvm::StringRef("wrong results"));
  EXPECT_EQ(wrong.getArray("samples")->size(), 1U);
  EXPECT_NE(wrong.getObject("difference"), nullptr);
}

TEST(OverviewJson, IsWholeForNothing) {
  const json::Value value = jsonOf(overviewOf({}));
  const json::Object &all = *value.getAsObject();
  EXPECT_TRUE(all.getArray("configurations")->empty());
  EXPECT_TRUE(all.getString("remark"));
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
