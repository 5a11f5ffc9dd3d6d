// Tests of specs in words.

#include "results/overview/VariantWords.h"

#include <gmock/gmock.h>

using namespace corvane;

TEST(VariantWords, SayWhatAWorkItemDoes) {
  EXPECT_EQ(variantWords("g0S4"), "each work-item does 4 columns");
  EXPECT_EQ(variantWords("g1S2"), "each work-item does 2 rows");
  EXPECT_EQ(variantWords("g0S2g1S2"),
            "each work-item does 2 columns by 2 rows");
  EXPECT_EQ(variantWords("g2S2"), "each work-item does 2 layers");
  EXPECT_EQ(variantWords("g5S2"), "each work-item does 2 of dimension 5");
  EXPECT_EQ(variantWords("g0S2S3"), "each work-item does 6 columns");
}

TEST(VariantWords, SayWhatElseIsDifferent) {
  EXPECT_EQ(variantWords("l0S4"),
            "each work-item does 4 columns; work-groups shrink");
  EXPECT_EQ(variantWords("c0S4"), "each work-item does 4 columns; the last "
                                  "work-group may be padded");
  EXPECT_EQ(variantWords("g0S4d3S4"),
            "each work-item does 4 columns; argument 3 a multiple of 4");
  EXPECT_EQ(variantWords("r1S2g0S4"),
            "each work-item does 4 columns; marked r1S2");
}

TEST(VariantWords, SayThatWorkItemsDoWhatTheyDid) {
  EXPECT_EQ(variantWords("g0S1"),
            "work-items do what they did; whole work-groups only");
  EXPECT_EQ(variantWords("l0S1"), "work-items do what they did");
}

TEST(VariantWords, AreNoneForWhatIsNoSpec) {
  EXPECT_EQ(variantWords(""), "");
  EXPECT_EQ(variantWords("g4"), "");
  EXPECT_EQ(variantWords("<script>"), "");
}
