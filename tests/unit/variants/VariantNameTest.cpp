// Tests of which kernel names are variants' names, and of what they say.
#include "variants/VariantName.h"

#include "variants/ArgumentConditions.h"
#include "variants/CoarseRequest.h"

#include <gmock/gmock.h>

namespace {

using corvane::ConditionSet;
using corvane::parseSpec;
using corvane::parseVariantName;
using llvm::CoarseMode;
using llvm::CoarseRequest;
using llvm::DivisibleArgs;
using llvm::RestrictArgs;
using testing::ElementsAre;
using testing::Pair;

bool isVariant(llvm::StringRef name) {
  return parseVariantName(name) != nullptr;
}

/// The base name, or a text that is no kernel name.
std::string baseOf(llvm::StringRef name) {
  const auto record = parseVariantName(name);
  return record ? record->baseName : "(not a variant)";
}

/// The name that the record rebuilds, or a text that is no kernel name.
std::string rebuilt(llvm::StringRef name) {
  const auto record = parseVariantName(name);
  return record ? record->kernelName() : "(not a variant)";
}

std::size_t conditionCount(llvm::StringRef name) {
  const auto record = parseVariantName(name);
  return record ? record->conditions.size() : 0;
}

/// The condition at `place` in the record's order, or null if it is another.
template <typename Condition>
const Condition *conditionAt(const llvm::TransformedKernelAgent &record,
                             int place) {
  auto at = record.conditions.begin();
  while (place-- > 0 && at != record.conditions.end())
    ++at;
  return at == record.conditions.end() ? nullptr
                                       : dynamic_cast<const Condition *>(&*at);
}

TEST(VariantName, ReadsAGlobalRequest) {
  const auto record = parseVariantName("matmul_coarsed_g0S4");
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->baseName, "matmul");
  EXPECT_EQ(record->conditions.size(), 1U);
  const auto *request = conditionAt<CoarseRequest>(*record, 0);
  ASSERT_NE(request, nullptr);
  EXPECT_EQ(request->mode, CoarseMode::Global);
  EXPECT_EQ(request->dim, 0U);
  EXPECT_EQ(request->factor, 4U);
  EXPECT_EQ(request->extraFactor, 1U);
  EXPECT_EQ(request->localMultiple, 1U);
}

TEST(VariantName, ReadsALocalRequestWithALocalMultiple) {
  const auto record = parseVariantName("my_kernel_coarsed_l1S2S1S8");
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->baseName, "my_kernel");
  EXPECT_EQ(record->conditions.size(), 1U);
  const auto *request = conditionAt<CoarseRequest>(*record, 0);
  ASSERT_NE(request, nullptr);
  EXPECT_EQ(request->mode, CoarseMode::Local);
  EXPECT_EQ(request->dim, 1U);
  EXPECT_EQ(request->factor, 2U);
  EXPECT_EQ(request->extraFactor, 1U);
  EXPECT_EQ(request->localMultiple, 8U);
}

TEST(VariantName, ReadsEveryKindOfCondition) {
  const auto record = parseVariantName("conv_coarsed_c0S2S2d3S4d5S16r1S2");
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->baseName, "conv");
  ASSERT_EQ(record->conditions.size(), 4U);

  const auto *restricted = conditionAt<RestrictArgs>(*record, 0);
  ASSERT_NE(restricted, nullptr);
  EXPECT_THAT(restricted->indices, ElementsAre(1, 2));
  const auto *request = conditionAt<CoarseRequest>(*record, 1);
  ASSERT_NE(request, nullptr);
  EXPECT_EQ(request->mode, CoarseMode::Coarse);
  EXPECT_EQ(request->dim, 0U);
  EXPECT_EQ(request->factor, 2U);
  EXPECT_EQ(request->extraFactor, 2U);
  const auto *third = conditionAt<DivisibleArgs>(*record, 2);
  ASSERT_NE(third, nullptr);
  EXPECT_THAT(third->divisors, ElementsAre(Pair(3, 4)));
  const auto *fifth = conditionAt<DivisibleArgs>(*record, 3);
  ASSERT_NE(fifth, nullptr);
  EXPECT_THAT(fifth->divisors, ElementsAre(Pair(5, 16)));
}

TEST(VariantName, RebuildsItemsInTheOrderOfTheConditions) {
  EXPECT_EQ(rebuilt("conv_coarsed_c0S2S2d3S4d5S16r1S2"),
            "conv_coarsed_r1S2c0S2S2d3S4d5S16");
}

TEST(VariantName, NeedsPairsForDivisibility) {
  EXPECT_FALSE(isVariant("k_coarsed_d2S8S3"));
}

TEST(VariantName, NeedsTwoNumbersForCoarsening) {
  EXPECT_FALSE(isVariant("k_coarsed_g4"));
  EXPECT_FALSE(isVariant("k_coarsed_g"));
  EXPECT_FALSE(isVariant("k_coarsed_c4"));
  EXPECT_FALSE(isVariant("k_coarsed_l4"));
}

TEST(VariantName, NeedsASpecThatStartsWithALowerCaseLetter) {
  EXPECT_FALSE(isVariant("k_coarsed_G0S4"));
  EXPECT_FALSE(isVariant("k_coarsed_4g"));
  EXPECT_FALSE(isVariant("k_coarsed_ g0S4"));
  EXPECT_FALSE(isVariant("k_coarsed_{0S4"));
  EXPECT_FALSE(isVariant("k_coarsed_`0S4"));
}

TEST(VariantName, KnowsFiveLetters) {
  for (char letter = 'a'; letter <= 'z'; ++letter) {
    const std::string name = std::string("k_coarsed_") + letter + "0S4";
    const bool known = std::string("cdglr").find(letter) != std::string::npos;
    EXPECT_EQ(isVariant(name), known) << name;
  }
  EXPECT_FALSE(isVariant("k_coarsed_x1"));
}

TEST(VariantName, IsSpoiltByAnUnknownLetterInALaterItem) {
  for (const char *name : {"k_coarsed_g0S4a", "k_coarsed_g0S4z1",
                           "k_coarsed_g0S4e0S4", "k_coarsed_g0S4x1d0S8"})
    EXPECT_FALSE(isVariant(name)) << name;
}

TEST(VariantName, NeedsThreePieces) {
  EXPECT_FALSE(isVariant("coarsed_g0S4"));
  EXPECT_FALSE(isVariant("g0S4"));
  EXPECT_FALSE(isVariant("k"));
  EXPECT_FALSE(isVariant("k_"));
  EXPECT_FALSE(isVariant(""));
  EXPECT_FALSE(isVariant("___"));
}

TEST(VariantName, NeedsASpec) {
  EXPECT_FALSE(isVariant("k_coarsed_"));
  EXPECT_FALSE(isVariant("k_coarsed__"));
  EXPECT_FALSE(isVariant("k_coarsed"));
}

TEST(VariantName, IgnoresOneTrailingUnderscore) {
  EXPECT_EQ(baseOf("k_coarsed_g0S4_"), "k");
  EXPECT_EQ(rebuilt("k_coarsed_g0S4_"), "k_coarsed_g0S4");
  EXPECT_FALSE(isVariant("k_coarsed_g0S4__"));
}

TEST(VariantName, KeepsUnderscoresOfTheBaseName) {
  EXPECT_EQ(baseOf("a_coarsed_g0S4"), "a");
  EXPECT_EQ(baseOf("a_b_coarsed_g0S4"), "a_b");
  EXPECT_EQ(baseOf("a__b_coarsed_g0S4"), "a__b");
  EXPECT_EQ(baseOf("_a_coarsed_g0S4"), "_a");
  EXPECT_EQ(baseOf("a__coarsed_g0S4"), "a_");
}

TEST(VariantName, AllowsAnEmptyBaseName) {
  EXPECT_EQ(baseOf("_coarsed_g0S4"), "");
  EXPECT_EQ(rebuilt("_coarsed_g0S4"), "_coarsed_g0S4");
}

TEST(VariantName, LooksForTheMarkerInTheSecondToLastPieceOnly) {
  const auto record = parseVariantName("a_coarsed_g0S4_coarsed_g1S2");
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->baseName, "a_coarsed_g0S4");
  EXPECT_EQ(record->conditions.size(), 1U);
  const auto *request = conditionAt<CoarseRequest>(*record, 0);
  ASSERT_NE(request, nullptr);
  EXPECT_EQ(request->dim, 1U);

  EXPECT_FALSE(isVariant("a_coarsed_b_g0S4"));
}

TEST(VariantName, NeedsTheMarkerToTheLetter) {
  EXPECT_FALSE(isVariant("a_COARSED_g0S4"));
  EXPECT_FALSE(isVariant("a_coarsed2_g0S4"));
  EXPECT_FALSE(isVariant("a_coarse_g0S4"));
  EXPECT_FALSE(isVariant("a coarsed g0S4"));
}

TEST(VariantName, AllowsARestrictionWithoutArguments) {
  const auto record = parseVariantName("a_coarsed_r");
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->conditions.size(), 1U);
  const auto *restricted = conditionAt<RestrictArgs>(*record, 0);
  ASSERT_NE(restricted, nullptr);
  EXPECT_TRUE(restricted->indices.empty());
}

TEST(VariantName, AllowsDivisibilityWithoutArguments) {
  const auto record = parseVariantName("a_coarsed_d");
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->conditions.size(), 1U);
  const auto *divisible = conditionAt<DivisibleArgs>(*record, 0);
  ASSERT_NE(divisible, nullptr);
  EXPECT_TRUE(divisible->divisors.empty());
}

TEST(VariantName, DropsAnEquivalentRequest) {
  EXPECT_EQ(conditionCount("a_coarsed_g0S4g0S4"), 1U);
  EXPECT_EQ(rebuilt("a_coarsed_g0S4g0S4"), "a_coarsed_g0S4");
  EXPECT_EQ(rebuilt("a_coarsed_g0S4g0S4S1S1S9"), "a_coarsed_g0S4");
}

TEST(VariantName, DropsEquivalentDivisibility) {
  EXPECT_EQ(rebuilt("a_coarsed_d1S2S3S4d3S4S1S2"), "a_coarsed_d1S2S3S4");
  EXPECT_EQ(rebuilt("a_coarsed_ddd"), "a_coarsed_d");
}

TEST(VariantName, KeepsRequestsThatDiffer) {
  EXPECT_EQ(rebuilt("a_coarsed_g0S4l0S4g0S2"), "a_coarsed_l0S4g0S2g0S4");
}

TEST(VariantName, KeepsEveryRestriction) {
  EXPECT_EQ(conditionCount("a_coarsed_r1r1"), 2U);
  EXPECT_EQ(rebuilt("a_coarsed_r1r1"), "a_coarsed_r1r1");
}

TEST(VariantName, DropsTrailingDefaults) {
  EXPECT_EQ(rebuilt("a_coarsed_g0S4S1S1"), "a_coarsed_g0S4");
  EXPECT_EQ(rebuilt("a_coarsed_g0S4S1S3"), "a_coarsed_g0S4S1S3");
  EXPECT_EQ(rebuilt("a_coarsed_g0S4S2S1"), "a_coarsed_g0S4S2");
}

TEST(VariantName, NormalisesNumbers) {
  EXPECT_EQ(rebuilt("a_coarsed_g00S4"), "a_coarsed_g0S4");
  EXPECT_EQ(rebuilt("a_coarsed_g0S4Q"), "a_coarsed_g0S4");
  EXPECT_EQ(rebuilt("a_coarsed_d1S2S1S3"), "a_coarsed_d1S2");
  EXPECT_EQ(rebuilt("a_coarsed_r3S1S3"), "a_coarsed_r1S3");
}

TEST(VariantName, ReadsMissingNumbersAsZero) {
  EXPECT_FALSE(isVariant("a_coarsed_g0S"));
  EXPECT_EQ(rebuilt("a_coarsed_g0SS4"), "a_coarsed_g0S0S4");
}

TEST(VariantName, ReadsANegativeDimensionThatNoLaunchHas) {
  const auto record = parseVariantName("a_coarsed_g-1S4");
  ASSERT_NE(record, nullptr);
  const auto *request = conditionAt<CoarseRequest>(*record, 0);
  ASSERT_NE(request, nullptr);
  EXPECT_EQ(request->dim, 4294967295U);
  const std::size_t global[] = {1024, 1024, 1024};
  const std::size_t local[] = {0, 0, 0};
  EXPECT_FALSE(record->acceptsLaunch(3, global, local));
}

TEST(VariantName, SurvivesNumbersBeyondAnyRange) {
  EXPECT_EQ(rebuilt("a_coarsed_g0S99999999999999999999"),
            "a_coarsed_g0S2147483647");
  EXPECT_EQ(rebuilt("a_coarsed_r-99999999999999999999"),
            "a_coarsed_r2147483648");
}

TEST(VariantName, SurvivesBytesOutsideAscii) {
  EXPECT_EQ(baseOf("\xc3\xa9\xff_coarsed_g0S4"), "\xc3\xa9\xff");
  EXPECT_FALSE(isVariant("k_coarsed_\xe9"
                         "0S4"));
  EXPECT_EQ(rebuilt("k_coarsed_g0S4\xff"), "k_coarsed_g0S4");
}

TEST(VariantName, SurvivesANulInsideTheName) {
  const char name[] = "k\0_coarsed_g0S4\0";
  EXPECT_EQ(baseOf(llvm::StringRef(name, sizeof name - 1)),
            std::string("k\0", 2));
}

TEST(VariantName, RebuildsACanonicalNameUnchanged) {
  for (const char *name :
       {"k_coarsed_g0S4", "k_coarsed_r3r1", "k_coarsed_r0g0S4d1S2",
        "k_coarsed_l0S2S1S8g1S2c2S2S2", "k_coarsed_rd", "_coarsed_d0S8"})
    EXPECT_EQ(rebuilt(name), name);
}

TEST(VariantName, SurvivesAVeryLongName) {
  constexpr std::size_t count = 200'000;
  const std::string restrictions = "k_coarsed_" + std::string(count, 'r');
  EXPECT_EQ(conditionCount(restrictions), count);
  EXPECT_FALSE(isVariant(restrictions + "x"));
  EXPECT_FALSE(isVariant(std::string(count, '_')));

  std::string requests = "k_coarsed_";
  for (int factor = 30'000; factor > 0; --factor)
    requests += "g0S" + std::to_string(factor);
  EXPECT_EQ(conditionCount(requests), 30'000U);
}

TEST(ParseSpec, EmptiesTheSetWhenALaterItemIsInvalid) {
  ConditionSet set;
  EXPECT_FALSE(parseSpec("g0S4r1d1S2x1", set));
  EXPECT_TRUE(set.empty());
}

TEST(ParseSpec, RejectsAnEmptySpec) {
  ConditionSet set;
  EXPECT_FALSE(parseSpec("", set));
  EXPECT_TRUE(set.empty());
}

TEST(ParseSpec, PutsEachItemIntoTheSet) {
  ConditionSet set;
  EXPECT_TRUE(parseSpec("g0S4r1d1S2", set));
  EXPECT_EQ(set.size(), 3U);
}

} // namespace
