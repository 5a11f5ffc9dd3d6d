// Tests of reading run records: as they were written, cut off, and edited.

#include "results/runs/RunReader.h"

#include "results/runs/RunWriter.h"

#include "Examples.h"

#include <gmock/gmock.h>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

static std::string textOf(const std::vector<RunLine> &lines) {
  std::string text;
  for (const RunLine &line : lines)
    text += lineText(line);
  return text;
}

// The text of the lines that the run was read from.
static std::string textOf(const RunRecord &run) {
  std::string text = lineText(*run.process);
  for (const auto &[number, line] : run.devices)
    text += lineText(line);
  for (const auto &[number, line] : run.programs)
    text += lineText(line);
  for (const auto &[number, configuration] : run.configurations) {
    text += lineText(configuration.line);
    for (const SampleLine &line : configuration.samples)
      text += lineText(line);
    for (const CheckLine &line : configuration.checks)
      text += lineText(line);
    if (configuration.decision)
      text += lineText(*configuration.decision);
  }
  return run.end ? text + lineText(*run.end) : text;
}

static std::vector<std::string> problemsOf(const RunRecord &run) {
  std::vector<std::string> problems;
  for (const RunProblem &problem : run.problems)
    problems.push_back(std::to_string(problem.line) + ": " + problem.text);
  return problems;
}

static const std::string start =
    textOf({exampleProcess(), exampleDevice(), exampleProgram(),
            exampleConfiguration()});

TEST(RunReader, ReadsEveryLineBack) {
  const std::string text = textOf(exampleLines());
  const RunRecord run = readRun(text);
  EXPECT_THAT(run.problems, IsEmpty());
  EXPECT_EQ(textOf(run), text);
}

TEST(RunReader, TakesTheLongestStartThatIsWhole) {
  const std::string text = textOf(exampleLines());
  for (std::size_t length = 0; length != text.size(); ++length) {
    const RunRecord run = readRun(llvm::StringRef(text).take_front(length));
    ASSERT_THAT(problemsOf(run), IsEmpty()) << "cut at " << length;
    ASSERT_FALSE(run.end && length + 1 < text.size()) << "cut at " << length;
  }
  EXPECT_TRUE(readRun(llvm::StringRef(text).drop_back(1)).end);
}

TEST(RunReader, IgnoresWhatItDoesNotKnow) {
  const RunRecord run =
      readRun(start +
              R"({"kind":"weather","wind":[1,{"deep":[2]}]})"
              "\n\n" +
              R"({"kind":"sample","configuration":0,"version":"l0S2",)"
              R"("microseconds":3,"colour":"green"})"
              "\n");
  EXPECT_THAT(problemsOf(run), IsEmpty());
  EXPECT_THAT(run.configurations.at(0).samples, SizeIs(1));
}

TEST(RunReader, TellsTheLinesThatItCannotUse) {
  const RunRecord run = readRun(
      start + "no json\n" +
      R"({"kind":"sample","configuration":9,"version":"x","microseconds":1})"
      "\n"
      R"({"kind":"sample","configuration":0,"version":"x","microseconds":-1})"
      "\n"
      R"({"kind":"sample","configuration":0,"microseconds":1})"
      "\n"
      R"({"kind":"sample","configuration":1e99,"version":"x","microseconds":1})"
      "\n[]\n" +
      lineText(exampleProcess()) + lineText(exampleConfiguration()));
  EXPECT_THAT(problemsOf(run),
              ElementsAre("5: byte 1: this is no number that can be held",
                          "6: there is no configuration 9",
                          "7: \"microseconds\" is no number of at least 0",
                          "8: \"version\" is missing",
                          "9: \"configuration\" is no whole number in range",
                          "10: it is no object", "11: a second process line",
                          "12: number 0 occurs twice"));
  EXPECT_THAT(run.configurations.at(0).samples, IsEmpty());
}

TEST(RunReader, RefusesConfigurationsOfWhatIsNotThere) {
  ConfigurationLine line = exampleConfiguration(1);
  line.device = 7;
  const RunRecord run = readRun(start + lineText(line));
  EXPECT_THAT(problemsOf(run), ElementsAre("5: there is no device 7"));
  EXPECT_THAT(run.configurations, SizeIs(1));
}

TEST(RunReader, RefusesSizesThatAreNone) {
  const auto problem = [](const char *sizes) {
    return readRun(start +
                   R"({"kind":"configuration","configuration":1,)"
                   R"("program":0,"device":0,"kernel":"k",)"
                   R"("variants":[],)" +
                   sizes + "}\n");
  };
  for (const char *sizes :
       {R"("global":[],"local":null)", R"("global":[1,2,3,4],"local":null)",
        R"("global":5,"local":null)", R"("global":[1],"local":[1,1])",
        R"("global":[1],"local":[0])", R"("global":[-1],"local":null)",
        R"("global":[1.5],"local":null)", R"("global":[null],"local":null)"}) {
    EXPECT_THAT(problem(sizes).problems, SizeIs(1)) << sizes;
    EXPECT_THAT(problem(sizes).configurations, SizeIs(1)) << sizes;
  }
  EXPECT_THAT(problem(R"("global":[18446744073709551615])").problems,
              IsEmpty());
}

TEST(RunReader, TakesADifferenceWithoutAPlace) {
  const RunRecord run = readRun(start + R"({"kind":"check","configuration":0,)"
                                        R"("version":"x","result":"different"})"
                                        "\n");
  ASSERT_THAT(run.configurations.at(0).checks, SizeIs(1));
  EXPECT_EQ(run.configurations.at(0).checks[0].result, CheckResult::Different);
}

TEST(RunReader, KeepsTheLastDecision) {
  DecisionLine later = exampleDecision();
  later.winner = "g0S4";
  const RunRecord run =
      readRun(start + lineText(exampleDecision()) + lineText(later));
  EXPECT_EQ(run.configurations.at(0).decision->winner, "g0S4");
}

TEST(RunReader, ReadsNothingWithoutAProcessLine) {
  const std::string rest = textOf({exampleDevice(), exampleProgram()});
  const RunRecord run = readRun(rest + lineText(exampleProcess()));
  EXPECT_FALSE(run.process);
  EXPECT_THAT(run.devices, IsEmpty());
  EXPECT_THAT(problemsOf(run), ElementsAre(HasSubstr("no run record")));
}

TEST(RunReader, ReadsNothingOfALaterFormat) {
  ProcessLine process = exampleProcess();
  process.version = 2;
  const RunRecord run = readRun(lineText(process) + lineText(exampleDevice()));
  EXPECT_FALSE(run.process);
  EXPECT_THAT(run.devices, IsEmpty());
  EXPECT_THAT(problemsOf(run), ElementsAre("1: format version 2 is not known "
                                           "here; this is version 1"));
}

TEST(RunReader, KeepsTheFirstProblemsAndCountsTheRest) {
  std::string text = start;
  for (int i = 0; i != 1000; ++i)
    text += "?\n";
  const RunRecord run = readRun(text);
  EXPECT_THAT(run.problems, SizeIs(RunReader::maxProblems));
  EXPECT_EQ(run.problemCount, 1000U);
}

TEST(RunReader, RefusesALineThatIsTooLong) {
  const RunRecord run =
      readRun(start + std::string(RunReader::maxLineLength + 1, ' ') + "x\n");
  EXPECT_THAT(problemsOf(run), ElementsAre("5: the line is too long"));
}
