// Tests of the values of CORVANE_VERIFY.

#include "tuning/Tolerance.h"

#include <gtest/gtest.h>

using namespace corvane;

TEST(Tolerance, KnowsExactAndOff) {
  EXPECT_EQ(parseTolerance("exact")->mode, Tolerance::Mode::Exact);
  EXPECT_EQ(parseTolerance("off")->mode, Tolerance::Mode::Off);
}

TEST(Tolerance, TakesABoundBetweenNothingAndAll) {
  const auto tolerance = parseTolerance("1e-5");
  ASSERT_TRUE(tolerance);
  EXPECT_EQ(tolerance->mode, Tolerance::Mode::Bound);
  EXPECT_DOUBLE_EQ(tolerance->bound, 1e-5);
}

TEST(Tolerance, RefusesEverythingElse) {
  for (const char *text : {"", "Exact", "0", "-1e-5", "1", "2", "nan", "inf",
                           "1e-5x", " 1e-5", "1e-999", "1e999", "+0.1"})
    EXPECT_FALSE(parseTolerance(text)) << text;
}
