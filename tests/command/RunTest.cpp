// Tests of corvane run.

#include "tests/command/Corvane.h"

using namespace corvane::test;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {
class Run : public CorvaneTest {
protected:
  Run() { tuned({"record", "a", recordFile("r", fasterVariant())}); }

  Outcome ran(const std::vector<std::string> &arguments) const {
    std::vector<std::string> all = {"run", "--profile", output(), "--",
                                    APPLICATION_FILE};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return corvane(all);
  }
};
} // namespace

TEST_F(Run, EndsAsTheProgramDoesAndSaysNothing) {
  const Outcome outcome = ran({"say", "two words", "exit", "5"});
  EXPECT_EQ(outcome.exitCode, 5);
  EXPECT_EQ(outcome.out, "two words\n");
  EXPECT_EQ(outcome.err, "");
}

TEST_F(Run, SetsTheVariables) {
  const Outcome outcome =
      ran({"print", "CORVANE_PROFILE", "print", "OPENCL_LAYERS", "print",
           "CORVANE_TUNE", "print", "CORVANE_SUMMARY"});
  EXPECT_EQ(outcome.out, "CORVANE_PROFILE=" + written(output()) +
                             "\nOPENCL_LAYERS=" + layer() +
                             "\nno CORVANE_TUNE\nno CORVANE_SUMMARY\n");
}

TEST_F(Run, NamesTheGeneratedVariantsOfTheTunedFolder) {
  define("CORVANE_GENERATE", "/opt/other");
  define("CORVANE_VARIANTS", "/opt/others");
  EXPECT_EQ(ran({"print", "CORVANE_VARIANTS", "print", "CORVANE_GENERATE"}).out,
            "no CORVANE_VARIANTS\nno CORVANE_GENERATE\n");
  std::filesystem::create_directories(output() + "/variants");
  const std::string expected =
      "CORVANE_VARIANTS=" + written(output()) + "/variants\n";
  EXPECT_EQ(ran({"print", "CORVANE_VARIANTS"}).out, expected);
  EXPECT_EQ(corvane({"run", "--profile", output() + "/profile.json", "--",
                     APPLICATION_FILE, "print", "CORVANE_VARIANTS"})
                .out,
            expected);
}

TEST_F(Run, AsksForASummary) {
  EXPECT_EQ(corvane({"run", "--summary", "--profile", output(), "--",
                     APPLICATION_FILE, "print", "CORVANE_SUMMARY"})
                .out,
            "CORVANE_SUMMARY=1\n");
}

TEST_F(Run, TakesTheProfileItself) {
  const std::string file = output() + "/profile.json";
  EXPECT_THAT(corvane({"run", "--profile", file, "--", APPLICATION_FILE,
                       "print", "CORVANE_PROFILE"})
                  .out,
              EndsWith("profile.json\n"));
}

TEST_F(Run, TellsAProfileThatIsNotThere) {
  const Outcome outcome = corvane({"run", "--profile", folder.file("nowhere"),
                                   "--", APPLICATION_FILE, "say", "x"});
  EXPECT_EQ(outcome.exitCode, 125);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err, AllOf(HasSubstr("nowhere is not there"),
                                 HasSubstr("corvane tune")));
}

TEST_F(Run, TellsAProfileThatCannotBeUsed) {
  ASSERT_TRUE(folder.write("tuned/profile.json", "{\"format\": 1}"));
  const Outcome outcome = ran({"say", "x"});
  EXPECT_EQ(outcome.exitCode, 125);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err, EndsWith("cannot be used: \"format\" is no text\n"));
}

TEST_F(Run, TellsAProgramThatIsNotThere) {
  const Outcome outcome =
      corvane({"run", "--profile", output(), "--", "./no-such-program"});
  EXPECT_EQ(outcome.exitCode, 127);
  EXPECT_THAT(outcome.err, StartsWith("corvane: ./no-such-program: No such f"));
}
