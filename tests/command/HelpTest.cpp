// Tests of the help of corvane, and of arguments that it refuses.

#include "tests/command/Corvane.h"

using namespace corvane::test;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

namespace {
class CorvaneHelp : public CorvaneTest {};
} // namespace

TEST_F(CorvaneHelp, NamesTheCommands) {
  const Outcome outcome = corvane({"--help"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.out,
              AllOf(HasSubstr("tune"), HasSubstr("run"), HasSubstr("coarsen")));
  EXPECT_EQ(outcome.err, "");
}

TEST_F(CorvaneHelp, ShowsEachCommandWithAnExample) {
  EXPECT_THAT(corvane({"tune", "--help"}).out,
              AllOf(HasSubstr("--output"), HasSubstr("--samples"),
                    HasSubstr("--verify"), HasSubstr("--seconds"),
                    HasSubstr("Example: corvane tune")));
  EXPECT_THAT(corvane({"run", "--help"}).out,
              AllOf(HasSubstr("--profile"), HasSubstr("--summary"),
                    HasSubstr("Example: corvane run")));
  EXPECT_THAT(corvane({"coarsen", "--help"}).out,
              AllOf(HasSubstr("--plans"), HasSubstr("--output"),
                    HasSubstr("--refusals"),
                    HasSubstr("Example: corvane coarsen")));
  EXPECT_THAT(corvane({"report", "--help"}).out,
              AllOf(HasSubstr("--output"), HasSubstr("--json"),
                    HasSubstr("--csv"), HasSubstr("--t4"),
                    HasSubstr("Example: corvane report")));
  EXPECT_THAT(corvane({"explain", "--help"}).out,
              HasSubstr("Example: corvane explain"));
  EXPECT_THAT(
      corvane({"merge", "--help"}).out,
      AllOf(HasSubstr("--output"), HasSubstr("Example: corvane merge")));
  EXPECT_THAT(
      corvane({"diff", "--help"}).out,
      AllOf(HasSubstr("--fail-on-slower"), HasSubstr("Example: corvane diff")));
}

TEST_F(CorvaneHelp, TellsTheVersion) {
  EXPECT_EQ(corvane({"--version"}).out, "corvane " CORVANE_VERSION "\n");
}

TEST_F(CorvaneHelp, TellsWhereAProgramBelongs) {
  EXPECT_EQ(corvane({"tune", "./x"}).err,
            "corvane: The following argument was not expected: ./x; a program "
            "and its arguments come after --\n");
}

TEST_F(CorvaneHelp, RefusesArgumentsInOneLine) {
  for (const std::vector<std::string> &arguments :
       {std::vector<std::string>{},
        {"fly"},
        {"tune", "--colour", "--", "x"},
        {"tune", "--samples", "0", "--", "x"},
        {"tune", "--samples", "many", "--", "x"},
        {"tune", "--samples", "0x10", "--", "x"},
        {"tune", "--seconds", "0x10", "--", "x"},
        {"tune", "--seconds", "nan", "--", "x"},
        {"tune", "--output", "", "--", "x"},
        {"tune", "--verify", "-1", "--", "x"},
        {"tune", "--seconds", "-1", "--", "x"},
        {"tune", "./x"},
        {"tune"},
        {"tune", "--"},
        {"run"},
        {"coarsen"},
        {"coarsen", "a.cl", "b.cl"},
        {"report", ".", "--", "x"},
        {"explain", "a", "b", "c"},
        {"merge", "a"},
        {"merge", "-o", "a"},
        {"diff", "a"},
        {"diff", "a", "b", "--fail-on-slower", "much"},
        {"diff", "a", "b", "--fail-on-slower", "-5%"},
        {"diff", "a", "b", "--fail-on-slower", "%"}}) {
    const Outcome outcome = corvane(arguments);
    EXPECT_EQ(outcome.exitCode, 125);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, StartsWith("corvane: "));
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1)
        << outcome.err;
  }
}

TEST_F(CorvaneHelp, TellsWhereTheProgramGoes) {
  EXPECT_EQ(corvane({"run"}).err, "corvane: which program? Put it after --, as "
                                  "in: corvane run -- ./program\n");
}
