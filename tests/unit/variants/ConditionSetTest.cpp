// Tests of the set of conditions: its order, equivalent conditions, and
// restrictions, of which the latest comes first.
#include "variants/Transform.h"

#include "ProbeCondition.h"
#include "variants/VariantName.h"

#include <gmock/gmock.h>

namespace {

using corvane::ConditionSet;
using corvane::test::ProbeCondition;
using corvane::test::ProbeLog;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> items(const ConditionSet &set) {
  std::vector<std::string> texts;
  for (const llvm::Transform &condition : set)
    texts.push_back(condition.specText());
  return texts;
}

ConditionSet parsed(llvm::StringRef spec) {
  ConditionSet set;
  EXPECT_TRUE(corvane::parseSpec(spec, set));
  return set;
}

TEST(ConditionSet, StartsEmpty) {
  const ConditionSet set;
  EXPECT_TRUE(set.empty());
  EXPECT_EQ(set.size(), 0U);
  EXPECT_THAT(items(set), IsEmpty());
}

TEST(ConditionSet, PutsConditionsInOrder) {
  EXPECT_THAT(items(parsed("d1S2c1S2g0S4l0S8r7")),
              ElementsAre("r7", "l0S8", "g0S4", "c1S2", "d1S2"));
}

TEST(ConditionSet, KeepsTheFirstOfEquivalentConditions) {
  ProbeLog log;
  ConditionSet set;
  set.insert(std::make_unique<ProbeCondition>(log, 1, 0, "first", true));
  set.insert(std::make_unique<ProbeCondition>(log, 1, 0, "second", true));
  EXPECT_THAT(items(set), ElementsAre("first"));
  EXPECT_EQ(log.alive, 1);
}

TEST(ConditionSet, PutsEachNewRestrictionBeforeTheOthers) {
  EXPECT_THAT(items(parsed("r3r1g0S4r2")),
              ElementsAre("r2", "r1", "r3", "g0S4"));
}

TEST(ConditionSet, KeepsEqualRestrictions) {
  EXPECT_THAT(items(parsed("r1r1")), ElementsAre("r1", "r1"));
}

TEST(ConditionSet, TurnsRestrictionsRoundWhenItsConditionsAreCloned) {
  const ConditionSet set = parsed("r3r1g0S4");
  const ConditionSet once = ConditionSet::clonesOf(set);
  EXPECT_THAT(items(once), ElementsAre("r3", "r1", "g0S4"));
  EXPECT_THAT(items(ConditionSet::clonesOf(once)),
              ElementsAre("r1", "r3", "g0S4"));
}

TEST(ConditionSet, DestroysItsConditions) {
  ProbeLog log;
  {
    ConditionSet set;
    set.insert(std::make_unique<ProbeCondition>(log, 1, 0, "a", true));
    set.insert(std::make_unique<ProbeCondition>(log, 1, 1, "b", true));
    EXPECT_EQ(log.alive, 2);
  }
  EXPECT_EQ(log.alive, 0);
}

TEST(ConditionSet, DestroysItsConditionsWhenItIsEmptied) {
  ProbeLog log;
  ConditionSet set;
  set.insert(std::make_unique<ProbeCondition>(log, 1, 0, "a", true));
  set.clear();
  EXPECT_TRUE(set.empty());
  EXPECT_EQ(log.alive, 0);
}

} // namespace
