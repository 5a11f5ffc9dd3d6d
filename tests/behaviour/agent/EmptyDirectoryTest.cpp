// Tests of an output location that is defined but empty. Only a system that
// tells an empty variable from an undefined one can have it.

#include "tests/behaviour/Calls.h"
#include "tests/support/ChildProcess.h"

#include "gtest/gtest.h"

#include <filesystem>

#include <unistd.h>

using namespace corvane;
using namespace corvane::test;

namespace {
/// Takes the administrator's rights from this process for a while: only the
/// administrator may write into the root folder.
class Unprivileged {
public:
  Unprivileged() : before(geteuid()) {
    if (before == 0) {
      EXPECT_EQ(seteuid(otherUser), 0);
    }
  }
  ~Unprivileged() {
    if (before == 0) {
      EXPECT_EQ(seteuid(0), 0);
    }
  }
  Unprivileged(const Unprivileged &) = delete;
  Unprivileged &operator=(const Unprivileged &) = delete;

private:
  static constexpr uid_t otherUser = 65534;
  uid_t before;
};
} // namespace

TEST(EmptyDirectory, MeansAFileInTheRootAndIsComplainedAboutWithTwoBlanks) {
  const Ended ended = runToItsEnd([](const std::string &) {
    assignForGood("CORVANE_DUMP_LOG", nullptr);
    Unprivileged whileItRuns;
    FakeRuntime runtime;
    LoadedAgent agent(runtime, {{"CORVANE_AUTOTUNE", ""}});
    EXPECT_EQ(agent.status(), CL_SUCCESS);
    EXPECT_FALSE(isAutotuning(runtime, agent.table()));
  });
  EXPECT_EQ(ended.errorText,
            "CV:  is invalid. There will be no autotune output generated.\n");
  EXPECT_FALSE(std::filesystem::exists("/.auto.csv"));
}
