// Tests of corvane explain.

#include "tests/command/Corvane.h"

using namespace corvane;
using namespace corvane::test;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {
class Explain : public CorvaneTest {};
} // namespace

TEST_F(Explain, SaysWhichVersionRunsAndWhy) {
  std::vector<RunLine> lines = fasterVariant();
  lines.emplace_back(endAfterLaunches(7));
  const std::string place = tunedFolder("t", lines);
  const Outcome outcome = corvane({"explain", place});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(
      outcome.out,
      R"(With the fastest versions the kernels take 350.0 us instead of 700.0 us: 50 % less.

scale (program 0123abcd)
  variants found: 1
    g0S4: each work-item does 4 columns
  1024 / 64 on device, 7 launches: uses g0S4; faster
    original, 100.0 us, 7 samples, ran in 7 launches
    g0S4, 50.0 us, 7 samples: 2.00x (2.00x to 2.00x): the fastest
)");
}

TEST_F(Explain, IsOfOneKernelIfItIsNamed) {
  std::vector<RunLine> lines =
      startOfRun({{"scale", {"g0S4"}}, {"copy", {"g0S4"}}});
  addConfiguration(lines, "scale", 100.0, 50.0);
  addConfiguration(lines, "copy", 100.0, 100.0);
  const std::string place = tunedFolder("t", lines);
  EXPECT_THAT(corvane({"explain", place, "copy"}).out,
              AllOf(HasSubstr("\ncopy ("), Not(HasSubstr("\nscale ("))));
  const Outcome unknown = corvane({"explain", place, "sort"});
  EXPECT_EQ(unknown.exitCode, 125);
  EXPECT_EQ(unknown.out, "");
  EXPECT_THAT(unknown.err, StartsWith("corvane: no kernel is called sort in "));
}

TEST_F(Explain, DoesNotMoveTheCursor) {
  std::vector<RunLine> lines = startOfRun({{"a\x1b[2J\xc2\x9b", {}}});
  const std::string out = corvane({"explain", tunedFolder("t", lines)}).out;
  EXPECT_THAT(out, AllOf(HasSubstr("\na?[2J"), Not(HasSubstr("\x1b")),
                         Not(HasSubstr("\xc2\x9b"))));
}

TEST_F(Explain, RefusesAPlaceWithoutResults) {
  EXPECT_EQ(corvane({"explain", folder.text()}).exitCode, 125);
}
