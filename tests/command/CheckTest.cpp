// Tests of corvane check without the simulator; tests/system/tune has those
// with it.

#include "tests/command/Corvane.h"

using namespace corvane::test;
using testing::HasSubstr;

namespace {
class Check : public CorvaneTest {};
} // namespace

TEST_F(Check, SaysWhereToGetTheSimulator) {
  define("PATH", folder.text());
  const Outcome outcome = corvane({"check", "--", APPLICATION_FILE});
  EXPECT_EQ(outcome.exitCode, 125);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err, HasSubstr("apt-get install oclgrind"));
}
