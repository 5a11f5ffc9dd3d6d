// Tests of variant records: text, questions, copies, and the rewriting of a
// launch.
#include "variants/TransformedKernel.h"

#include "ProbeCondition.h"
#include "variants/VariantName.h"

#include <gmock/gmock.h>

#include <array>
#include <functional>
#include <list>

namespace {

using corvane::acceptsArguments;
using corvane::parseVariantName;
using corvane::prepareLaunch;
using corvane::test::ProbeCondition;
using corvane::test::ProbeLog;
using llvm::TransformedKernel;
using llvm::TransformedKernelAgent;
using testing::ElementsAre;

using Sizes = std::array<std::size_t, 2>;
using Conditions = std::vector<std::reference_wrapper<const llvm::Transform>>;

struct Argument {
  std::uint32_t index;
  std::size_t size;
  const void *value;
};

/// The record of a name that the test knows to be a variant's.
TransformedKernelAgent parsed(llvm::StringRef name) {
  const auto record = parseVariantName(name);
  EXPECT_NE(record, nullptr) << name.str();
  // For a name that is none, a record without conditions: a failing test must
  // not crash.
  return record ? TransformedKernelAgent(record->baseName, record->conditions)
                : TransformedKernelAgent("", Conditions());
}

TEST(TransformedKernel, HoldsRestrictionsInTheOrderOfTheName) {
  const auto record = parseVariantName("k_coarsed_r3r1");
  ASSERT_NE(record, nullptr);
  ASSERT_EQ(record->conditions.size(), 2U);
  EXPECT_EQ(record->conditions.begin()->specText(), "r3");
  EXPECT_EQ(std::next(record->conditions.begin())->specText(), "r1");
  EXPECT_EQ(record->kernelName(), "k_coarsed_r3r1");
}

TEST(TransformedKernel, HoldsRestrictionThenRequestThenDivisibility) {
  const auto record = parseVariantName("k_coarsed_r0g0S4d1S2");
  ASSERT_NE(record, nullptr);
  std::vector<std::string> items;
  for (const llvm::Transform &condition : record->conditions)
    items.push_back(condition.specText());
  EXPECT_THAT(items, ElementsAre("r0", "g0S4", "d1S2"));
}

TEST(TransformedKernel, SaysItsFullNameAsAnAgentsRecordAndItsSpecOtherwise) {
  const auto record = parseVariantName("k_coarsed_r0g0S4d1S2");
  ASSERT_NE(record, nullptr);
  const TransformedKernel &base = *record;
  EXPECT_EQ(base.specText(), "k_coarsed_r0g0S4d1S2");
  EXPECT_EQ(base.TransformedKernel::specText(), "r0g0S4d1S2");
  EXPECT_EQ(record->kernelName(), "k_coarsed_r0g0S4d1S2");
}

TEST(TransformedKernel, OrdersRequestsByDimension) {
  EXPECT_EQ(parseVariantName("k_coarsed_g1S4l0S8")->kernelName(),
            "k_coarsed_l0S8g1S4");
  EXPECT_EQ(parseVariantName("k_coarsed_l0S8g1S4")->kernelName(),
            "k_coarsed_l0S8g1S4");
}

TEST(TransformedKernel, RewritesEveryDimensionThatHasARequest) {
  const auto record = parseVariantName("k_coarsed_g0S4g1S2");
  ASSERT_NE(record, nullptr);
  Sizes global = {1024, 512};
  Sizes local = {64, 4};
  EXPECT_TRUE(record->acceptsLaunch(2, global.data(), local.data()));
  record->adjustLaunch(2, global.data(), local.data());
  EXPECT_THAT(global, ElementsAre(256, 256));
  EXPECT_THAT(local, ElementsAre(64, 4));
}

TEST(TransformedKernel, StopsAskingAtTheFirstConditionThatRejectsTheLaunch) {
  ProbeLog log;
  const ProbeCondition first(log, 2, 0, "dimension 0", false);
  const ProbeCondition second(log, 2, 1, "dimension 1", true);
  const TransformedKernelAgent record("k", Conditions{second, first});
  const Sizes sizes = {1, 1};
  EXPECT_FALSE(record.acceptsLaunch(2, sizes.data(), sizes.data()));
  EXPECT_THAT(log.asked, ElementsAre("dimension 0"));
}

TEST(TransformedKernel, AsksEveryConditionInOrderAboutAnAcceptedLaunch) {
  ProbeLog log;
  const ProbeCondition first(log, 2, 0, "dimension 0", true);
  const ProbeCondition second(log, 2, 1, "dimension 1", true);
  const TransformedKernelAgent record("k", Conditions{second, first});
  const Sizes sizes = {1, 1};
  EXPECT_TRUE(record.acceptsLaunch(2, sizes.data(), sizes.data()));
  EXPECT_THAT(log.asked, ElementsAre("dimension 0", "dimension 1"));
}

TEST(TransformedKernel, StopsAskingAtTheFirstConditionThatRejectsAnArgument) {
  ProbeLog log;
  const ProbeCondition first(log, 2, 0, "a", true);
  const ProbeCondition second(log, 3, 0, "b", false);
  const ProbeCondition third(log, 4, 0, "c", true);
  const TransformedKernelAgent record("k", Conditions{first, second, third});
  EXPECT_FALSE(record.acceptsArgument(5, 4, nullptr));
  EXPECT_THAT(log.asked, ElementsAre("a argument 5 of 4", "b argument 5 of 4"));
}

TEST(TransformedKernel, LetsEachConditionSeeWhatTheOneBeforeLeft) {
  ProbeLog log;
  const ProbeCondition first(log, 2, 0, "a", true);
  const ProbeCondition second(log, 2, 1, "b", true);
  const TransformedKernelAgent record("k", Conditions{second, first});
  std::size_t global = 10;
  std::size_t local = 20;
  record.adjustLaunch(1, &global, &local);
  EXPECT_THAT(log.asked, ElementsAre("a saw 10", "b saw 11"));
  EXPECT_EQ(global, 12U);
  EXPECT_EQ(local, 22U);
}

TEST(TransformedKernel, AcceptsEverythingWithoutConditions) {
  const TransformedKernelAgent record("k", Conditions());
  const std::size_t size = 7;
  EXPECT_TRUE(record.acceptsLaunch(1, &size, &size));
  EXPECT_TRUE(record.acceptsArgument(0, 3, nullptr));
  EXPECT_EQ(record.kernelName(), "k_coarsed_");
}

TEST(TransformedKernel, ClonesTheConditionsItIsMadeOf) {
  ProbeLog log;
  {
    std::list<ProbeCondition> given;
    given.emplace_back(log, 2, 0, "a", true);
    given.emplace_back(log, 2, 0, "equivalent", true);
    const TransformedKernelAgent record("k", given);
    EXPECT_EQ(record.kernelName(), "k_coarsed_a");
    EXPECT_EQ(log.alive, 3);
    given.clear();
    EXPECT_EQ(record.kernelName(), "k_coarsed_a");
    EXPECT_EQ(log.alive, 1);
  }
  EXPECT_EQ(log.alive, 0);
}

TEST(TransformedKernel, IsDestroyedThroughItsBase) {
  ProbeLog log;
  const ProbeCondition condition(log, 2, 0, "a", true);
  std::unique_ptr<TransformedKernel> record =
      std::make_unique<TransformedKernelAgent>(
          "a base name that is too long to be stored in place",
          Conditions{condition});
  EXPECT_EQ(log.alive, 2);
  record.reset();
  EXPECT_EQ(log.alive, 1);
}

TEST(TransformedKernel, TurnsRestrictionsRoundInACopy) {
  const auto record = parseVariantName("k_coarsed_r3r1r2g1S2g0S4d1S2");
  ASSERT_NE(record, nullptr);
  const TransformedKernelAgent copy = *record;
  EXPECT_EQ(copy.kernelName(), "k_coarsed_r2r1r3g0S4g1S2d1S2");
  const TransformedKernelAgent second = copy;
  EXPECT_EQ(second.kernelName(), "k_coarsed_r3r1r2g0S4g1S2d1S2");
}

TEST(TransformedKernel, SharesNothingWithACopy) {
  ProbeLog log;
  const ProbeCondition condition(log, 2, 0, "a", true);
  auto record =
      std::make_unique<TransformedKernelAgent>("k", Conditions{condition});
  const TransformedKernelAgent copy = *record;
  EXPECT_EQ(log.alive, 3);
  EXPECT_NE(&*copy.conditions.begin(), &*record->conditions.begin());
  record.reset();
  EXPECT_EQ(copy.baseName, "k");
  EXPECT_EQ(copy.kernelName(), "k_coarsed_a");
}

TEST(PrepareLaunch, WritesTheRewrittenSizesOfAnAcceptedLaunch) {
  const TransformedKernelAgent record = parsed("k_coarsed_g0S4");
  const Sizes global = {1024, 3};
  const Sizes local = {64, 3};
  Sizes outGlobal = {};
  Sizes outLocal = {};
  EXPECT_TRUE(prepareLaunch(record, 2, global.data(), local.data(),
                            outGlobal.data(), outLocal.data()));
  EXPECT_THAT(outGlobal, ElementsAre(256, 3));
  EXPECT_THAT(outLocal, ElementsAre(64, 3));
}

TEST(PrepareLaunch, LeavesTheGivenSizesAlone) {
  const TransformedKernelAgent record = parsed("k_coarsed_l0S2");
  const Sizes global = {1024, 3};
  const Sizes local = {64, 3};
  Sizes outGlobal = {};
  Sizes outLocal = {};
  EXPECT_TRUE(prepareLaunch(record, 2, global.data(), local.data(),
                            outGlobal.data(), outLocal.data()));
  EXPECT_THAT(outGlobal, ElementsAre(512, 3));
  EXPECT_THAT(outLocal, ElementsAre(32, 3));
  EXPECT_THAT(global, ElementsAre(1024, 3));
  EXPECT_THAT(local, ElementsAre(64, 3));
}

TEST(PrepareLaunch, WritesNoMoreEntriesThanTheLaunchHasDimensions) {
  const TransformedKernelAgent record = parsed("k_coarsed_g0S4");
  const Sizes global = {1024, 3};
  const Sizes local = {0, 3};
  Sizes outGlobal = {7, 7};
  Sizes outLocal = {7, 7};
  EXPECT_TRUE(prepareLaunch(record, 1, global.data(), local.data(),
                            outGlobal.data(), outLocal.data()));
  EXPECT_THAT(outGlobal, ElementsAre(256, 7));
  EXPECT_THAT(outLocal, ElementsAre(0, 7));
}

TEST(PrepareLaunch, TouchesNothingWhenAConditionRejects) {
  const TransformedKernelAgent record = parsed("k_coarsed_g0S4");
  const Sizes global = {1000, 3};
  const Sizes local = {64, 3};
  Sizes outGlobal = {7, 7};
  Sizes outLocal = {7, 7};
  EXPECT_FALSE(prepareLaunch(record, 2, global.data(), local.data(),
                             outGlobal.data(), outLocal.data()));
  EXPECT_THAT(outGlobal, ElementsAre(7, 7));
  EXPECT_THAT(outLocal, ElementsAre(7, 7));
}

TEST(PrepareLaunch, AnswersFalseWithoutGlobalSizes) {
  const Sizes local = {64, 3};
  Sizes outGlobal = {7, 7};
  Sizes outLocal = {7, 7};
  for (const char *name : {"k_coarsed_g0S4", "k_coarsed_r"})
    EXPECT_FALSE(prepareLaunch(parsed(name), 2, nullptr, local.data(),
                               outGlobal.data(), outLocal.data()))
        << name;
  EXPECT_THAT(outGlobal, ElementsAre(7, 7));
  EXPECT_THAT(outLocal, ElementsAre(7, 7));
}

TEST(AcceptsArguments, AcceptsAnEmptySequence) {
  EXPECT_TRUE(
      acceptsArguments(std::vector<Argument>(), parsed("k_coarsed_d3S4")));
}

TEST(AcceptsArguments, DoesNotTestAnArgumentThatWasNeverSet) {
  const std::uint32_t ten = 10;
  const std::vector<Argument> others = {{2, sizeof ten, &ten}};
  EXPECT_TRUE(acceptsArguments(others, parsed("k_coarsed_d3S4")));
}

TEST(AcceptsArguments, TestsEveryArgument) {
  const std::uint32_t twelve = 12;
  const std::uint32_t ten = 10;
  const TransformedKernelAgent record = parsed("k_coarsed_d3S4d5S16");
  EXPECT_TRUE(acceptsArguments(
      std::vector<Argument>{{0, sizeof ten, &ten}, {3, sizeof twelve, &twelve}},
      record));
  EXPECT_FALSE(acceptsArguments(
      std::vector<Argument>{{0, sizeof ten, &ten}, {3, sizeof ten, &ten}},
      record));
  EXPECT_FALSE(
      acceptsArguments(std::vector<Argument>{{3, sizeof twelve, &twelve},
                                             {5, sizeof twelve, &twelve}},
                       record));
}

TEST(AcceptsArguments, StopsAtTheFirstArgumentThatIsRejected) {
  ProbeLog log;
  const ProbeCondition condition(log, 3, 0, "a", false);
  const TransformedKernelAgent record("k", Conditions{condition});
  const std::list<Argument> arguments = {{9, 1, nullptr}, {2, 8, nullptr}};
  EXPECT_FALSE(acceptsArguments(arguments, record));
  EXPECT_THAT(log.asked, ElementsAre("a argument 9 of 1"));
}

TEST(AcceptsArguments, AsksInTheOrderOfTheSequence) {
  ProbeLog log;
  const ProbeCondition condition(log, 3, 0, "a", true);
  const TransformedKernelAgent record("k", Conditions{condition});
  const std::list<Argument> arguments = {{9, 1, nullptr}, {2, 8, nullptr}};
  EXPECT_TRUE(acceptsArguments(arguments, record));
  EXPECT_THAT(log.asked, ElementsAre("a argument 9 of 1", "a argument 2 of 8"));
}

} // namespace
