// Tests of corvane diff.

#include "tests/command/Corvane.h"

using namespace corvane;
using namespace corvane::test;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

namespace {
class Diff : public CorvaneTest {
protected:
  std::string withTimes(const std::string &name, double scale,
                        double copy) const {
    std::vector<RunLine> lines = startOfRun({{"scale", {}}, {"copy", {}}});
    addConfiguration(lines, "scale", scale, scale);
    addConfiguration(lines, "copy", copy, copy);
    return tunedFolder(name, lines);
  }
};
} // namespace

TEST_F(Diff, TellsWhatIsFasterAndWhatIsSlower) {
  const Outcome outcome = corvane(
      {"diff", withTimes("old", 100.0, 100.0), withTimes("new", 80.0, 110.0)});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ("\n" + outcome.out, R"(
kernel  sizes                 before              after     time  95 % interval       result
copy    1024 / 64  original 100.0 us  original 110.0 us  +10.0 %  +10.0 % to +10.0 %  slower
scale   1024 / 64  original 100.0 us   original 80.0 us  -20.0 %  -20.0 % to -20.0 %  faster
)");
  EXPECT_EQ(outcome.err, "corvane: 1 slower, 1 faster, 0 no difference, 0 too "
                         "few samples\n");
}

TEST_F(Diff, FailsOnlyBeyondTheLimit) {
  const std::string before = withTimes("old", 100.0, 100.0);
  const std::string after = withTimes("new", 80.0, 110.0);
  EXPECT_EQ(corvane({"diff", before, after, "--fail-on-slower", "5%"}).exitCode,
            1);
  EXPECT_EQ(corvane({"diff", before, after, "--fail-on-slower", "15"}).exitCode,
            0);
  const Outcome failed =
      corvane({"diff", before, after, "--fail-on-slower", "0"});
  EXPECT_EQ(failed.exitCode, 1);
  EXPECT_THAT(failed.err, EndsWith("corvane: 1 configuration is slower by more "
                                   "than 0.0 %\n"));
  EXPECT_EQ(
      corvane({"diff", after, before, "--fail-on-slower", "30%"}).exitCode, 0);
}

TEST_F(Diff, ComparesATimingLogWithARun) {
  const std::string before = withTimes("old", 100.0, 100.0);
  std::filesystem::create_directories(folder.path() / "log");
  std::string text = "header\n";
  for (int i = 0; i != 7; ++i)
    text += "scale,1024,,,64,,,baseline,150.000\n";
  ASSERT_TRUE(folder.write("log/.auto.csv", text));
  const Outcome outcome =
      corvane({"diff", before, folder.file("log"), "--fail-on-slower", "5%"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.out, HasSubstr("+50.0 %"));
  EXPECT_THAT(outcome.err, AllOf(HasSubstr("; in the first alone: 1\n"),
                                 HasSubstr("the devices or their drivers are "
                                           "not the same")));
}

TEST_F(Diff, SaysThatThereIsNothingToCompare) {
  const std::string before = tunedFolder("old", fasterVariant());
  const std::string after = tunedFolder("new", startOfRun({{"scale", {}}}));
  const Outcome outcome = corvane({"diff", before, after});
  EXPECT_EQ(outcome.exitCode, 125);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err, HasSubstr("no kernel was measured with the same "));
  EXPECT_EQ(corvane({"diff", before, folder.file("none")}).exitCode, 125);
}
