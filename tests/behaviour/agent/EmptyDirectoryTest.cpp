// Tests of an output location that is defined but empty. Only a system that
// tells an empty variable from an undefined one can have it.

#include "tests/behaviour/Calls.h"
#include "tests/support/ChildProcess.h"

#include "gtest/gtest.h"

#include <filesystem>

#include <unistd.h>

using namespace corvane;
using namespace corvane::test;

// Nobody but the administrator may write into the root.
static void loseTheRightToWriteIntoTheRoot() {
  constexpr uid_t nobody = 65534;
  if (geteuid() == 0) {
    EXPECT_EQ(seteuid(nobody), 0);
  }
}

TEST(EmptyDirectory, MeansAFileInTheRootAndIsComplainedAboutWithTwoBlanks) {
  const Ended ended = runToItsEnd([](const std::string &) {
    assignForGood("CORVANE_DUMP_LOG", nullptr);
    loseTheRightToWriteIntoTheRoot();
    FakeRuntime runtime;
    LoadedAgent agent(runtime, {{"CORVANE_AUTOTUNE", ""}});
    EXPECT_EQ(agent.status(), CL_SUCCESS);
    EXPECT_FALSE(isAutotuning(runtime, agent.table()));
  });
  EXPECT_EQ(ended.errorText,
            "CV:  is invalid. There will be no autotune output generated.\n");
  EXPECT_FALSE(std::filesystem::exists("/.auto.csv"));
}
