// Checks what is written against the auto-tuning community's schema for
// results, T4 1.0.0, as this test states it.

#include "MadeOverview.h"

#include "results/overview/Exports.h"

#include "llvm/Support/JSON.h"

#include <gmock/gmock.h>

using namespace corvane;
using namespace corvane::test;
using testing::Contains;
using testing::ElementsAre;
namespace json = llvm::json;

namespace {

/// Collects what is against the schema.
class T4Schema {
public:
  std::vector<std::string> mistakes(const json::Value &file) {
    const json::Object *const object = file.getAsObject();
    if (!object)
      return {"the file is no object"};
    require(object->getString("schema_version") == llvm::StringRef("1.0.0"),
            "schema_version");
    const json::Array *const results = object->getArray("results");
    require(results != nullptr, "results");
    if (results)
      for (const json::Value &result : *results)
        checkResult(result.getAsObject());
    return found;
  }

private:
  void require(bool holds, const char *what) {
    if (!holds)
      found.emplace_back(what);
  }
  void checkResult(const json::Object *result) {
    require(result != nullptr, "a result is no object");
    if (!result)
      return;
    require(result->getObject("configuration") != nullptr, "configuration");
    const json::Object *const times = result->getObject("times");
    const json::Array *const runtimes =
        times ? times->getArray("runtimes") : nullptr;
    require(runtimes != nullptr, "times.runtimes");
    if (runtimes)
      for (const json::Value &time : *runtimes)
        require(bool(time.getAsNumber()), "a runtime is no number");
    const auto invalidity = result->getString("invalidity");
    require(invalidity &&
                (*invalidity == "timeout" || *invalidity == "compile" ||
                 *invalidity == "runtime" || *invalidity == "correctness" ||
                 *invalidity == "constraints" || *invalidity == "correct"),
            "invalidity");
    const auto correctness = result->getNumber("correctness");
    require(correctness && *correctness >= 0.0 && *correctness <= 1.0,
            "correctness");
    checkMeasurements(result->getArray("measurements"));
    const json::Array *const objectives = result->getArray("objectives");
    require(objectives && !objectives->empty(), "objectives");
    if (objectives)
      for (const json::Value &objective : *objectives)
        require(bool(objective.getAsString()), "an objective is no text");
  }
  void checkMeasurements(const json::Array *measurements) {
    require(measurements != nullptr, "measurements");
    if (!measurements)
      return;
    for (const json::Value &each : *measurements) {
      const json::Object *const object = each.getAsObject();
      require(object && object->getString("name") &&
                  object->getNumber("value") && object->getString("unit"),
              "a measurement");
    }
  }

  std::vector<std::string> found;
};

} // namespace

static json::Value t4Of(const Overview &overview) {
  std::string text;
  llvm::raw_string_ostream out(text);
  writeOverviewT4(out, overview);
  llvm::Expected<json::Value> value = json::parse(out.str());
  if (value)
    return std::move(*value);
  ADD_FAILURE() << llvm::toString(value.takeError());
  return nullptr;
}

TEST(OverviewT4, FollowsTheSchema) {
  for (const Overview &overview : {overviewOf({eventfulRun()}), overviewOf({})})
    EXPECT_THAT(T4Schema().mistakes(t4Of(overview)), ElementsAre());
}

TEST(OverviewT4, IsCheckedByASchemaThatFindsMistakes) {
  json::Value file = t4Of(overviewOf({eventfulRun()}));
  json::Object &first =
      *file.getAsObject()->getArray("results")->front().getAsObject();
  first["invalidity"] = "perhaps";
  first.erase("correctness");
  EXPECT_THAT(T4Schema().mistakes(file),
              ElementsAre("invalidity", "correctness"));
}

TEST(OverviewT4, HasAResultForEachVersionThatRan) {
  const json::Value file = t4Of(overviewOf({eventfulRun()}));
  const json::Array &results = *file.getAsObject()->getArray("results");
  ASSERT_EQ(results.size(), 4U);
  const json::Object &original = *results[0].getAsObject();
  EXPECT_EQ(original.getObject("configuration")->getString("version"),
            llvm::StringRef("baseline"));
  const json::Array &times = *original.getObject("times")->getArray("runtimes");
  ASSERT_EQ(times.size(), 7U);
  EXPECT_NEAR(*times[0].getAsNumber(), 0.0997, 1e-9);
  EXPECT_EQ(original.getString("invalidity"), llvm::StringRef("correct"));
  const json::Object &wrong = *results[1].getAsObject();
  EXPECT_EQ(wrong.getString("invalidity"), llvm::StringRef("correctness"));
  EXPECT_EQ(wrong.getNumber("correctness"), 0.0);
}
