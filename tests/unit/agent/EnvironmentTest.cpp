// Tests of looking variables of the environment up, setting and removing them.
#include "agent/Environment.h"

#include "tests/support/EnvGuard.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace corvane;
using corvane::test::EnvGuard;

static constexpr const char *name = "CORVANE_TEST_VARIABLE";

TEST(SetEnv, KeepsAValueThatItIsNotToReplace) {
  const EnvGuard guard(name, "first");
  EXPECT_EQ(setEnv(name, "second", 0), -1);
  EXPECT_STREQ(std::getenv(name), "first");
}

TEST(SetEnv, DefinesAVariableThatThereIsNot) {
  const EnvGuard guard(name, "");
  unsetEnv(name);
  EXPECT_EQ(setEnv(name, "first", 0), 0);
  EXPECT_STREQ(std::getenv(name), "first");
}

TEST(SetEnv, ReplacesAValueWhenAsked) {
  const EnvGuard guard(name, "first");
  EXPECT_EQ(setEnv(name, "second", 1), 0);
  EXPECT_STREQ(std::getenv(name), "second");
}
