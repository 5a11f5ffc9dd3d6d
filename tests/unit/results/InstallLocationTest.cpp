// What people put into the variable, made fit for a page's address.

#include "results/InstallLocation.h"

#include <gtest/gtest.h>

using namespace corvane;

TEST(InstallLocation, TurnsEveryBackslash) {
  EXPECT_EQ(normalizedLocation("C:\\a\\\\b\\"), "C:/a//b/");
}

TEST(InstallLocation, LosesTheQuotesAroundIt) {
  EXPECT_EQ(normalizedLocation("\"C:\\tools\\x\""), "C:/tools/x");
}

TEST(InstallLocation, LosesOneQuoteAtEitherEnd) {
  EXPECT_EQ(normalizedLocation("\"a"), "a");
  EXPECT_EQ(normalizedLocation("a\""), "a");
  EXPECT_EQ(normalizedLocation("\"\"a\"b\"\""), "\"a\"b\"");
}

TEST(InstallLocation, SurvivesBeingShort) {
  EXPECT_EQ(normalizedLocation(""), "");
  EXPECT_EQ(normalizedLocation("\""), "");
  EXPECT_EQ(normalizedLocation("\"\""), "");
  EXPECT_EQ(normalizedLocation("\\"), "/");
}

TEST(InstallLocation, IsKeptOtherwise) {
  EXPECT_EQ(normalizedLocation(" /opt/x y/ "), " /opt/x y/ ");
}
