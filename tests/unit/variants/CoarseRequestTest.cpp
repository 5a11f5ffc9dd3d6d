// Tests of which ND ranges a coarsened variant takes, and how it rewrites them.
#include "variants/CoarseRequest.h"

#include <gmock/gmock.h>

#include <array>
#include <limits>

namespace {

using corvane::makeCoarseRequest;
using llvm::CoarseMode;
using llvm::CoarseRequest;
using testing::ElementsAre;

using Sizes = std::array<std::size_t, 2>;

constexpr CoarseMode noMode = static_cast<CoarseMode>(3);
constexpr CoarseMode negativeMode = static_cast<CoarseMode>(-1);

CoarseRequest request(CoarseMode mode, std::uint32_t factor,
                      std::uint32_t extraFactor = 1,
                      std::uint32_t localMultiple = 1) {
  CoarseRequest made;
  made.mode = mode;
  made.factor = factor;
  made.extraFactor = extraFactor;
  made.localMultiple = localMultiple;
  return made;
}

CoarseRequest onDimension(std::uint32_t dim, CoarseRequest made) {
  made.dim = made.dimension = dim;
  return made;
}

/// Whether a one-dimensional launch is accepted; a local size of 0 is none.
bool accepts(const CoarseRequest &condition, std::size_t global,
             std::size_t local) {
  return condition.acceptsLaunch(1, &global, &local);
}

/// The global and local size that a one-dimensional launch becomes.
Sizes adjusted(const CoarseRequest &condition, std::size_t global,
               std::size_t local) {
  condition.adjustLaunch(1, &global, &local);
  return {global, local};
}

/// The condition that an item makes; ends the test if it makes none.
CoarseRequest made(char letter, std::initializer_list<std::uint32_t> numbers) {
  const std::unique_ptr<llvm::Transform> condition =
      makeCoarseRequest(letter, numbers);
  const auto *coarse = dynamic_cast<const CoarseRequest *>(condition.get());
  EXPECT_NE(coarse, nullptr) << "no request of the letter " << letter;
  return coarse ? *coarse : CoarseRequest();
}

TEST(CoarseRequest, StartsAsALocalRequestOfFactorOne) {
  const CoarseRequest fresh;
  EXPECT_EQ(fresh.kind, 2U);
  EXPECT_EQ(fresh.mode, CoarseMode::Local);
  EXPECT_EQ(fresh.factor, 1U);
  EXPECT_EQ(fresh.extraFactor, 1U);
  EXPECT_EQ(fresh.localMultiple, 1U);
}

TEST(CoarseRequest, LocalAcceptsWorkGroupsThatDivideByTheSquareOfTheFactor) {
  const CoarseRequest local = request(CoarseMode::Local, 2);
  EXPECT_TRUE(accepts(local, 1024, 64));
  EXPECT_TRUE(accepts(local, 1024, 32));
  EXPECT_TRUE(accepts(local, 1024, 8));
  EXPECT_FALSE(accepts(local, 1024, 6));
}

TEST(CoarseRequest, LocalAcceptsALaunchWithoutLocalSize) {
  EXPECT_TRUE(accepts(request(CoarseMode::Local, 2), 1024, 0));
}

TEST(CoarseRequest, LocalDoesNotLookAtTheGlobalSize) {
  EXPECT_TRUE(accepts(request(CoarseMode::Local, 2), 1023, 64));
}

TEST(CoarseRequest, LocalWithAnExtraFactorNeedsALocalSize) {
  EXPECT_FALSE(accepts(request(CoarseMode::Local, 2, 2), 1024, 0));
}

TEST(CoarseRequest, LocalCountsTheLocalMultiple) {
  const CoarseRequest local = request(CoarseMode::Local, 2, 1, 8);
  EXPECT_TRUE(accepts(local, 1024, 32));
  EXPECT_FALSE(accepts(local, 1024, 16));
}

TEST(CoarseRequest, LocalShrinksBothSizes) {
  EXPECT_THAT(adjusted(request(CoarseMode::Local, 2), 1024, 64),
              ElementsAre(512, 32));
}

TEST(CoarseRequest, LocalShrinksTheGlobalSizeAloneWithoutLocalSize) {
  EXPECT_THAT(adjusted(request(CoarseMode::Local, 2), 1024, 0),
              ElementsAre(512, 0));
}

TEST(CoarseRequest, LocalRoundsUpToTheShrunkenWorkGroup) {
  EXPECT_THAT(adjusted(request(CoarseMode::Local, 2), 1000, 64),
              ElementsAre(512, 32));
}

TEST(CoarseRequest, GlobalAcceptsWhenFullWorkGroupsRemain) {
  EXPECT_TRUE(accepts(request(CoarseMode::Global, 4), 1024, 64));
}

TEST(CoarseRequest, GlobalRejectsWorkGroupsLargerThanWhatRemains) {
  EXPECT_FALSE(accepts(request(CoarseMode::Global, 4), 1024, 512));
}

TEST(CoarseRequest, GlobalRejectsAGlobalSizeThatTheSquareDoesNotDivide) {
  EXPECT_FALSE(accepts(request(CoarseMode::Global, 4), 1000, 64));
  EXPECT_FALSE(accepts(request(CoarseMode::Global, 4), 1000, 2));
}

TEST(CoarseRequest, GlobalKeepsTheLocalSize) {
  EXPECT_THAT(adjusted(request(CoarseMode::Global, 4), 1024, 64),
              ElementsAre(256, 64));
}

TEST(CoarseRequest, GlobalNeedsNoLocalSize) {
  const CoarseRequest global = request(CoarseMode::Global, 4);
  EXPECT_TRUE(accepts(global, 1024, 0));
  EXPECT_THAT(adjusted(global, 1024, 0), ElementsAre(256, 0));
}

TEST(CoarseRequest, GlobalWithAnExtraFactorNeedsALocalSize) {
  const CoarseRequest global = request(CoarseMode::Global, 2, 2);
  EXPECT_FALSE(accepts(global, 1024, 0));
  EXPECT_TRUE(accepts(global, 1024, 64));
}

TEST(CoarseRequest, CoarseAcceptsWhenFullWorkGroupsRemain) {
  const CoarseRequest coarse = request(CoarseMode::Coarse, 2);
  EXPECT_TRUE(accepts(coarse, 1000, 10));
  EXPECT_THAT(adjusted(coarse, 1000, 10), ElementsAre(500, 10));
}

TEST(CoarseRequest, CoarsePadsTheLastWorkGroup) {
  const CoarseRequest coarse = request(CoarseMode::Coarse, 2);
  EXPECT_TRUE(accepts(coarse, 1000, 8));
  EXPECT_THAT(adjusted(coarse, 1000, 8), ElementsAre(504, 8));
}

TEST(CoarseRequest, CoarseNeedsOnlyTheFactorToDivideTheGlobalSize) {
  const CoarseRequest coarse = request(CoarseMode::Coarse, 2);
  EXPECT_TRUE(accepts(coarse, 1002, 2));
  EXPECT_THAT(adjusted(coarse, 1002, 2), ElementsAre(502, 2));
}

TEST(CoarseRequest, CoarseRejectsAGlobalSizeThatTheFactorDoesNotDivide) {
  EXPECT_FALSE(accepts(request(CoarseMode::Coarse, 2), 1001, 2));
}

TEST(CoarseRequest, CoarseRejectsWorkGroupsThatTheFactorDoesNotDivide) {
  EXPECT_FALSE(accepts(request(CoarseMode::Coarse, 2), 1000, 5));
}

TEST(CoarseRequest, CoarseCountsTheLocalMultipleForWorkGroupsOnly) {
  const CoarseRequest coarse = request(CoarseMode::Coarse, 2, 1, 4);
  EXPECT_TRUE(accepts(coarse, 1002, 8));
  EXPECT_FALSE(accepts(coarse, 1000, 10));
}

TEST(CoarseRequest, CoarseWithAnExtraFactorDoesNotPad) {
  const CoarseRequest coarse = request(CoarseMode::Coarse, 2, 2);
  EXPECT_FALSE(accepts(coarse, 1000, 8));
  EXPECT_TRUE(accepts(coarse, 1000, 10));
}

TEST(CoarseRequest, CoarseAlwaysNeedsALocalSize) {
  EXPECT_FALSE(accepts(request(CoarseMode::Coarse, 2), 1000, 0));
  EXPECT_FALSE(accepts(request(CoarseMode::Coarse, 1), 1000, 0));
}

TEST(CoarseRequest, RejectsADimensionThatTheLaunchDoesNotHave) {
  const Sizes global = {1024, 1024};
  const Sizes local = {0, 0};
  EXPECT_FALSE(onDimension(2, request(CoarseMode::Global, 4))
                   .acceptsLaunch(2, global.data(), local.data()));
  EXPECT_FALSE(onDimension(4294967295U, request(CoarseMode::Global, 4))
                   .acceptsLaunch(2, global.data(), local.data()));
}

TEST(CoarseRequest, LeavesALaunchWithoutItsDimensionAlone) {
  Sizes global = {1024, 1024};
  Sizes local = {64, 64};
  onDimension(2, request(CoarseMode::Global, 4))
      .adjustLaunch(2, global.data(), local.data());
  EXPECT_THAT(global, ElementsAre(1024, 1024));
  EXPECT_THAT(local, ElementsAre(64, 64));
}

TEST(CoarseRequest, TestsAndRewritesItsOwnDimensionOnly) {
  const CoarseRequest second = onDimension(1, request(CoarseMode::Local, 2));
  Sizes global = {7, 1024};
  Sizes local = {7, 64};
  EXPECT_TRUE(second.acceptsLaunch(2, global.data(), local.data()));
  second.adjustLaunch(2, global.data(), local.data());
  EXPECT_THAT(global, ElementsAre(7, 512));
  EXPECT_THAT(local, ElementsAre(7, 32));

  const Sizes wrongWayRound = {64, 7};
  EXPECT_FALSE(second.acceptsLaunch(2, global.data(), wrongWayRound.data()));
}

TEST(CoarseRequest, TestsSizesInFullWidth) {
  const std::size_t large = (std::size_t{1} << 40) + 2;
  EXPECT_FALSE(accepts(request(CoarseMode::Global, 4), large, 0));
  EXPECT_TRUE(accepts(request(CoarseMode::Global, 4), large + 14, 0));
  EXPECT_THAT(adjusted(request(CoarseMode::Global, 4), large + 14, 0),
              ElementsAre((std::size_t{1} << 38) + 4, 0));
}

TEST(CoarseRequest, MultipliesItsNumbersIn32Bits) {
  // In 32 bits 65538 * 65538 is 262148.
  const CoarseRequest wrapped = request(CoarseMode::Global, 65538);
  EXPECT_TRUE(accepts(wrapped, std::size_t{262148} * 65538, 0));
  EXPECT_TRUE(accepts(wrapped, 262148, 0));
}

TEST(CoarseRequest, NeverAcceptsWithAFactorOfZero) {
  for (const CoarseMode mode :
       {CoarseMode::Local, CoarseMode::Global, CoarseMode::Coarse})
    for (const CoarseRequest &zero :
         {request(mode, 0), request(mode, 2, 0), request(mode, 2, 1, 0)}) {
      EXPECT_FALSE(accepts(zero, 1024, 64)) << zero.specText();
      EXPECT_FALSE(accepts(zero, 1024, 0)) << zero.specText();
      EXPECT_FALSE(accepts(zero, 0, 0)) << zero.specText();
    }
}

TEST(CoarseRequest, NeverAcceptsWhenItsDivisorWrapsToZero) {
  for (const CoarseMode mode :
       {CoarseMode::Local, CoarseMode::Global, CoarseMode::Coarse}) {
    const CoarseRequest wrapped = request(mode, 65536, 65536);
    EXPECT_FALSE(accepts(wrapped, std::size_t{1} << 32, 65536));
    EXPECT_FALSE(accepts(wrapped, 0, 0));
  }
}

TEST(CoarseRequest, NeverAcceptsWhenOnlyTheSquareWrapsToZero) {
  // The factor itself divides well, but its square is 2^32.
  EXPECT_FALSE(
      accepts(request(CoarseMode::Local, 65536), std::size_t{1} << 32, 65536));
  EXPECT_FALSE(accepts(request(CoarseMode::Local, 65536), 65536, 0));
  EXPECT_FALSE(
      accepts(request(CoarseMode::Global, 65536), std::size_t{1} << 32, 0));
}

TEST(CoarseRequest, CoarseDoesNotNeedTheSquare) {
  EXPECT_TRUE(
      accepts(request(CoarseMode::Coarse, 65536), std::size_t{1} << 32, 65536));
}

TEST(CoarseRequest, LeavesTheLaunchAloneWhenItsDivisorIsZero) {
  for (const CoarseMode mode :
       {CoarseMode::Local, CoarseMode::Global, CoarseMode::Coarse}) {
    EXPECT_THAT(adjusted(request(mode, 0), 1024, 64), ElementsAre(1024, 64));
    EXPECT_THAT(adjusted(request(mode, 65536, 65536), 1024, 64),
                ElementsAre(1024, 64));
  }
}

TEST(CoarseRequest, SurvivesALocalSizeThatShrinksToNothing) {
  EXPECT_THAT(adjusted(request(CoarseMode::Local, 100), 1000, 64),
              ElementsAre(10, 0));
}

TEST(CoarseRequest, RejectsEveryLaunchInAnUnknownMode) {
  EXPECT_FALSE(accepts(request(noMode, 2), 1024, 64));
  EXPECT_FALSE(accepts(request(negativeMode, 2), 1024, 64));
}

TEST(CoarseRequest, LeavesTheLaunchAloneInAnUnknownMode) {
  EXPECT_THAT(adjusted(request(noMode, 2), 1024, 64), ElementsAre(1024, 64));
  EXPECT_THAT(adjusted(request(negativeMode, 2), 1024, 64),
              ElementsAre(1024, 64));
}

TEST(CoarseRequest, AcceptsEveryArgument) {
  const std::uint32_t value = 3;
  const CoarseRequest global = request(CoarseMode::Global, 4);
  EXPECT_TRUE(global.acceptsArgument(0, sizeof value, &value));
  EXPECT_TRUE(global.acceptsArgument(0, 3, nullptr));
}

TEST(CoarseRequest, WritesDimensionAndFactor) {
  EXPECT_EQ(request(CoarseMode::Global, 4).specText(), "g0S4");
  EXPECT_EQ(request(CoarseMode::Local, 2).specText(), "l0S2");
}

TEST(CoarseRequest, WritesAnExtraFactor) {
  EXPECT_EQ(onDimension(1, request(CoarseMode::Coarse, 2, 2)).specText(),
            "c1S2S2");
}

TEST(CoarseRequest, WritesTheExtraFactorBeforeALocalMultiple) {
  EXPECT_EQ(request(CoarseMode::Local, 2, 1, 8).specText(), "l0S2S1S8");
  EXPECT_EQ(request(CoarseMode::Global, 4, 1, 3).specText(), "g0S4S1S3");
  EXPECT_EQ(request(CoarseMode::Global, 4, 5, 3).specText(), "g0S4S5S3");
}

TEST(CoarseRequest, WritesNumbersUnsigned) {
  EXPECT_EQ(onDimension(4294967295U, request(CoarseMode::Global, 4)).specText(),
            "g4294967295S4");
}

TEST(CoarseRequest, WritesAQuestionMarkForAnUnknownMode) {
  EXPECT_EQ(request(noMode, 2).specText(), "?0S2");
  EXPECT_EQ(request(negativeMode, 2).specText(), "?0S2");
}

TEST(CoarseRequest, ClonesEveryField) {
  const CoarseRequest original =
      onDimension(3, request(CoarseMode::Coarse, 5, 6, 7));
  const std::unique_ptr<llvm::Transform> copy = original.clone();
  const auto *coarse = dynamic_cast<const CoarseRequest *>(copy.get());
  ASSERT_NE(coarse, nullptr);
  EXPECT_EQ(coarse->kind, 2U);
  EXPECT_EQ(coarse->dimension, 3U);
  EXPECT_EQ(coarse->dim, 3U);
  EXPECT_EQ(coarse->mode, CoarseMode::Coarse);
  EXPECT_EQ(coarse->factor, 5U);
  EXPECT_EQ(coarse->extraFactor, 6U);
  EXPECT_EQ(coarse->localMultiple, 7U);
}

TEST(CoarseRequest, PrecedesByTheFirstNumberThatDiffers) {
  const CoarseRequest ascending[] = {
      request(negativeMode, 9, 9, 9), request(CoarseMode::Local, 9, 9, 9),
      request(CoarseMode::Global, 2, 9, 9),
      request(CoarseMode::Global, 3, 1, 9),
      request(CoarseMode::Global, 3, 2, 1),
      request(CoarseMode::Global, 3, 2, 2),
      request(CoarseMode::Coarse, 1, 1, 1),
      // The largest unsigned number:
      request(CoarseMode::Coarse, 4294967295U, 1, 1)};
  for (const CoarseRequest &a : ascending)
    for (const CoarseRequest &b : ascending)
      EXPECT_EQ(a.precedes(b), &a < &b) << a.specText() << ' ' << b.specText();
}

TEST(CoarseRequest, DoesNotPrecedeAnEqual) {
  const CoarseRequest one = request(CoarseMode::Global, 4, 2, 3);
  EXPECT_FALSE(one.precedes(request(CoarseMode::Global, 4, 2, 3)));
}

TEST(CoarseRequest, LeavesTheDimensionOutOfItsOrder) {
  const CoarseRequest low = onDimension(0, request(CoarseMode::Global, 4));
  const CoarseRequest high = onDimension(1, request(CoarseMode::Global, 4));
  EXPECT_FALSE(low.precedes(high));
  EXPECT_FALSE(high.precedes(low));
}

TEST(MakeCoarseRequest, TakesTheModeFromTheLetter) {
  EXPECT_EQ(made('l', {0, 2}).mode, CoarseMode::Local);
  EXPECT_EQ(made('g', {0, 2}).mode, CoarseMode::Global);
  EXPECT_EQ(made('c', {0, 2}).mode, CoarseMode::Coarse);
}

TEST(MakeCoarseRequest, TakesOneForANumberThatIsMissing) {
  const CoarseRequest two = made('g', {3, 4});
  EXPECT_EQ(two.dim, 3U);
  EXPECT_EQ(two.dimension, 3U);
  EXPECT_EQ(two.factor, 4U);
  EXPECT_EQ(two.extraFactor, 1U);
  EXPECT_EQ(two.localMultiple, 1U);
}

TEST(MakeCoarseRequest, TakesFourNumbersAndIgnoresTheRest) {
  const CoarseRequest five = made('g', {3, 4, 5, 6, 7});
  EXPECT_EQ(five.extraFactor, 5U);
  EXPECT_EQ(five.localMultiple, 6U);
  EXPECT_EQ(five.specText(), "g3S4S5S6");
}

TEST(MakeCoarseRequest, NeedsTwoNumbers) {
  EXPECT_EQ(makeCoarseRequest('g', {}), nullptr);
  EXPECT_EQ(makeCoarseRequest('g', {4}), nullptr);
}

TEST(MakeCoarseRequest, LeavesOtherLettersToOthers) {
  EXPECT_EQ(makeCoarseRequest('r', {0, 4}), nullptr);
  EXPECT_EQ(makeCoarseRequest('d', {0, 4}), nullptr);
  EXPECT_EQ(makeCoarseRequest('G', {0, 4}), nullptr);
}

} // namespace
