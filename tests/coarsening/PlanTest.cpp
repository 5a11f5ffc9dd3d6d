#include "coarsening/Plan.h"

#include <gmock/gmock.h>

using namespace corvane::coarsening;
using testing::ElementsAre;
using testing::SizeIs;

static std::vector<std::string> textsOf(llvm::StringRef plans) {
  std::vector<std::string> texts;
  for (const Plan &plan : parsePlans(plans).value_or(std::vector<Plan>()))
    texts.push_back(plan.text());
  return texts;
}

/// The spec of the only plan in the text.
static std::string specFor(llvm::StringRef text, bool needsLocalSize = false,
                           bool plainest = true) {
  auto plans = parsePlans(text);
  return plans ? specOf(plans->front(), needsLocalSize, plainest) : "";
}

TEST(Plans, AreWrittenAsTheyWereRead) {
  EXPECT_THAT(textsOf("g0S4,block:g0S8,stride:g1S2,seq:l0S2,c1S4,g0S2g1S2"),
              ElementsAre("g0S4", "block:g0S8", "stride:g1S2", "seq:l0S2",
                          "c1S4", "g0S2g1S2"));
}

TEST(Plans, ThatAreWrongAreNone) {
  for (const char *text :
       {"", "g", "g0", "g0S", "g0S1", "g3S2", "x0S2", "g0S2,", "g0S2l1S2",
        "g1S2g0S2", "g0S2g0S2", "g0S65", "g0S64g1S2", "block:l0S2", "g0S4x",
        "g-1S2", "g0S99999999999999999999", "seq:", "all,g0S2"})
    EXPECT_FALSE(parsePlans(text)) << text;
}

TEST(Plans, OfAKernelAreSixUnlessOthersAreNamed) {
  EXPECT_THAT(defaultPlans(), SizeIs(6));
  EXPECT_THAT(textsOf("default"), SizeIs(6));
  EXPECT_EQ(textsOf("all").size(), allPlans().size());
}

TEST(Plans, NumberTheirLanesAlongEachAxis) {
  const auto plans = parsePlans("g0S4g1S2");
  ASSERT_TRUE(plans);
  const Plan &plan = plans->front();
  EXPECT_EQ(plan.lanes(), 8U);
  EXPECT_EQ(plan.digit(6, 0), 2U);
  EXPECT_EQ(plan.digit(6, 1), 1U);
}

TEST(Specs, OfGlobalPlansTakeLaunchesWithoutALocalSizeUnlessOneIsNeeded) {
  EXPECT_EQ(specFor("g0S4"), "g0S4");
  EXPECT_EQ(specFor("g0S4", true), "g0S1S4");
}

TEST(Specs, OfLocalAndPaddedPlansTakeWholeWorkGroupsOnly) {
  EXPECT_EQ(specFor("l1S4"), "l1S1S4g1S1");
  EXPECT_EQ(specFor("c0S2"), "g0S1c0S2");
  EXPECT_EQ(specFor("l0S2l1S2"), "l0S1S2g0S1l1S1S2g1S1");
}

TEST(Specs, OfOtherWaysToDoTheSameLaunchesDiffer) {
  EXPECT_EQ(specFor("block:g0S4", false, false), "rg0S4");
  EXPECT_EQ(specFor("stride:g0S4", false, false), "r0g0S4");
  EXPECT_EQ(specFor("seq:adjacent:g0S4", false, false), "r1g0S4");
  EXPECT_EQ(specFor("seq:block:g0S4", false, false), "r2g0S4");
  EXPECT_EQ(specFor("seq:stride:g0S4", false, false), "r3g0S4");
}
