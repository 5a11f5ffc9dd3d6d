// Names that were probably meant to be a variant's.
#include "variants/LookAlike.h"

#include <gtest/gtest.h>

using namespace corvane;

namespace {
constexpr const char *rule = "a variant is called after its kernel, then "
                             "\"_coarsed_\" and items such as \"g0S4\"";
} // namespace

TEST(LookAlike, IsNoVariantAndNoOrdinaryName) {
  EXPECT_EQ(whyNoVariant("k_coarsed_g0S4"), "");
  EXPECT_EQ(whyNoVariant("k"), "");
  EXPECT_EQ(whyNoVariant(""), "");
  EXPECT_EQ(whyNoVariant("rough_kernel_g4"), "");
  EXPECT_EQ(whyNoVariant("coarse_grid_update"), "");
  EXPECT_EQ(whyNoVariant("restrict_to_coarse"), "");
}

TEST(LookAlike, IsToldTheDimensionThatItLacks) {
  EXPECT_EQ(whyNoVariant("scale_coarsed_g4"), "did you mean g0S4?");
  EXPECT_EQ(whyNoVariant("scale_coarsed_g4l1S2"), "did you mean g0S4l1S2?");
}

TEST(LookAlike, IsToldTheCaseOfLetters) {
  EXPECT_EQ(whyNoVariant("scale_coarsed_G0S4"), "did you mean g0S4?");
  EXPECT_EQ(whyNoVariant("scale_coarsed_g0s4"), "did you mean g0S4?");
}

TEST(LookAlike, IsToldTheSeparatorOfNumbers) {
  EXPECT_EQ(whyNoVariant("scale_coarsed_g0x4"), "did you mean g0S4?");
  EXPECT_EQ(whyNoVariant("scale_coarsed_g0_4"), "did you mean g0S4?");
}

TEST(LookAlike, IsToldTheMarkerThatWasMeant) {
  EXPECT_EQ(whyNoVariant("my_scale_coarse_g0S4"),
            "did you mean my_scale_coarsed_g0S4?");
  EXPECT_EQ(whyNoVariant("scale_Coarsened_g4"),
            "did you mean scale_coarsed_g0S4?");
}

TEST(LookAlike, IsToldTheRuleWhereNothingCanBeGuessed) {
  EXPECT_EQ(whyNoVariant("scale_coarsed_fast"), rule);
  EXPECT_EQ(whyNoVariant("scale_coarsed"), rule);
  EXPECT_EQ(whyNoVariant("coarsed_g0S4"), rule);
  EXPECT_EQ(whyNoVariant("scale_coarsed_g"), rule);
}
