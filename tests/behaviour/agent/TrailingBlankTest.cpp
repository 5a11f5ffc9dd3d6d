// Tests of an output location that ends with a blank. Windows drops such blanks
// from the names of folders.

#include "tests/behaviour/Calls.h"
#include "tests/support/TempFolder.h"

#include "gtest/gtest.h"

using namespace corvane;
using namespace corvane::test;

TEST(TrailingBlank, BelongsToTheOutputLocation) {
  TempFolder folder;
  FakeRuntime runtime;
  LoadedAgent agent(runtime, {{"CORVANE_AUTOTUNE", folder.file("blank ")}});
  EXPECT_TRUE(isAutotuning(runtime, agent.table()));
  EXPECT_TRUE(folder.has("blank /.auto.csv"));
  EXPECT_FALSE(folder.has("blank"));
}
