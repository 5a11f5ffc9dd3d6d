// Tests of the example programs, unchanged, on a real OpenCL with the agent.

#include "tests/support/TempFolder.h"
#include "tests/windows/Process.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <algorithm>
#include <sstream>

using namespace corvane::test;
using testing::AllOf;
using testing::Each;
using testing::HasSubstr;
using testing::Ne;
using testing::SizeIs;
using testing::StartsWith;

static std::vector<std::string> lines(const std::string &text) {
  std::istringstream in(text);
  std::vector<std::string> all;
  for (std::string line; std::getline(in, line);)
    all.push_back(line);
  return all;
}

static std::vector<std::string> launchesOf(const std::string &kernel,
                                           const TempFolder &folder) {
  std::vector<std::string> found;
  for (const std::string &line : lines(folder.read("launches")))
    if (line.rfind(kernel, 0) == 0)
      found.push_back(line);
  return found;
}

static Finished run(const std::string &program, const std::string &arguments,
                    const TempFolder &folder, Variables variables) {
  variables.emplace_back("PLAYED_LAUNCHES", folder.file("launches"));
  return runProgram(program, arguments, variables);
}

static constexpr const char *smallVector = "--size 65536 --iterations 3";
static constexpr const char *smallMatmul =
    "--size 64 --odd-depth 62 --iterations 3";

TEST(PlayedVector, RunsItsVariantsInNormalMode) {
  TempFolder folder;
  const Finished program = run("played_vector", smallVector, folder,
                               {{"CORVANE_DUMP_LOG", folder.file("log.txt")}});
  EXPECT_EQ(program.exitCode, 0U) << program.errors;
  EXPECT_THAT(program.out, AllOf(HasSubstr("launch=sum launches=4"),
                                 HasSubstr("launch=deal launches=4")));

  EXPECT_THAT(launchesOf("sumGroups", folder),
              AllOf(SizeIs(4), Each("sumGroups_coarsed_l0S4 16384 64")));
  EXPECT_THAT(launchesOf("deal", folder),
              AllOf(SizeIs(4), Each("deal_coarsed_g0S4 16384 256")));
  const std::string log = folder.read("log.txt");
  EXPECT_THAT(log, StartsWith("Frontend loaded\n"));
  EXPECT_EQ(program.errors, std::to_string(log.size()) + "\n");
}

TEST(PlayedMatmul, RunsTheKernelItselfWhereTheVariantsConditionFails) {
  TempFolder folder;
  const Finished program = run("played_matmul", smallMatmul, folder, {});
  EXPECT_EQ(program.exitCode, 0U) << program.errors;

  EXPECT_THAT(launchesOf("matmul_coarsed", folder), SizeIs(4));
  EXPECT_THAT(launchesOf("matmul 64x64", folder), SizeIs(4));
  EXPECT_THAT(lines(program.errors),
              AllOf(SizeIs(4), Each(HasSubstr("non-expected input scalar"))));
}

TEST(PlayedBlur, RunsItsVariantOnAPictureThatItDoesNotFit) {
  TempFolder folder;
  const Finished program =
      run("played_blur", "--iterations 3 --output " + folder.text(), folder,
          {{"CORVANE_DUMP_LOG", folder.file("log.txt")}});
  EXPECT_EQ(program.exitCode, 0U) << program.errors;
  EXPECT_THAT(program.out, HasSubstr("launch=picture launches=4"));

  // 60 rows are 15 of four each, rounded up to whole work-groups of four.
  EXPECT_THAT(launchesOf("blur", folder),
              AllOf(SizeIs(4), Each("blur_coarsed_r0S1c1S4 96x16 16x4")));
  const std::string before = folder.read("blur-before.png");
  EXPECT_THAT(before, SizeIs(96 * 60 * 4));
  EXPECT_THAT(folder.read("blur-after.png"),
              AllOf(SizeIs(before.size()), Ne(before)));
}

static auto rowsOf(const std::string &start,
                   const std::vector<std::string> &log) {
  return std::count_if(log.begin(), log.end(), [&](const std::string &line) {
    return line.rfind(start, 0) == 0;
  });
}

static void expectAutotuned(const TempFolder &folder) {
  const std::vector<std::string> log = lines(folder.read("out/.auto.csv"));
  // The header, and for each of four launches the variant and the original.
  ASSERT_THAT(log, SizeIs(1 + 4 * 2 + 4 * 2));
  for (const char *row :
       {"sumGroups,65536,,,256,,,l0S4,", "sumGroups,65536,,,256,,,baseline,",
        "deal,65536,,,256,,,g0S4,", "deal,65536,,,256,,,baseline,"})
    EXPECT_EQ(rowsOf(row, log), 4) << row;

  EXPECT_THAT(lines(folder.read("out/autotune.csv")), SizeIs(log.size()));
  EXPECT_THAT(folder.read("out/main.html"), HasSubstr("_65536___256__.html"));
  const std::string index = folder.read("out/html/index.html");
  EXPECT_THAT(index, AllOf(HasSubstr("sumGroups [ x:65536/256 ]"),
                           HasSubstr("deal [ x:65536/256 ]")));
  EXPECT_THAT(folder.read("out/html/deal_65536___256___table.html"),
              HasSubstr("called 4 times"));
  EXPECT_THAT(folder.read("out/html/deal_65536___256___graph.html"),
              HasSubstr("file://C:/tools/dygraph-combined.js"));
}

static Finished autotune(const TempFolder &folder, const std::string &end) {
  return run("played_vector", smallVector, folder,
             {{"CORVANE_AUTOTUNE", folder.file("out")},
              {"CORVANE_INSTALL_LOCATION", "\"C:\\tools\""},
              {"PLAYED_END", end}});
}

TEST(PlayedVector, AutotunesAndReportsWhenUnloaded) {
  TempFolder folder;
  const Finished program = autotune(folder, "unload");
  EXPECT_EQ(program.exitCode, 0U);
  EXPECT_EQ(program.errors, "");
  expectAutotuned(folder);
}

TEST(PlayedVector, AutotunesAndReportsWhenTheLibraryIsFreed) {
  TempFolder folder;
  const Finished program = autotune(folder, "free");
  EXPECT_EQ(program.exitCode, 0U);
  EXPECT_EQ(program.errors, "");
  expectAutotuned(folder);
}

TEST(PlayedVector, AutotunesAndReportsWhenTheProcessEnds) {
  TempFolder folder;
  const Finished program = autotune(folder, "exit");
  EXPECT_EQ(program.exitCode, 0U);
  EXPECT_EQ(program.errors, "");
  expectAutotuned(folder);
}

TEST(PlayedMatmul, AutotunesVariantsOnTheSameInputs) {
  TempFolder folder;
  const Finished program = run("played_matmul", smallMatmul, folder,
                               {{"CORVANE_AUTOTUNE", folder.file("out")},
                                {"CORVANE_INSTALL_LOCATION", "C:/tools"}});
  // The program itself checks every value.
  EXPECT_EQ(program.exitCode, 0U) << program.errors;
  const std::vector<std::string> log = lines(folder.read("out/.auto.csv"));
  EXPECT_EQ(rowsOf("matmul,64,64,,16,4,,g0S4d3S4,", log), 4);
  EXPECT_EQ(rowsOf("matmul,64,64,,16,4,,baseline,", log), 4 + 4);
}

TEST(PlayedColumns, AutotunesAllVariantsOfAKernelAndRanksThem) {
  TempFolder folder;
  const Finished program =
      run("played_columns", "--width 1024 --height 16 --iterations 3", folder,
          {{"CORVANE_AUTOTUNE", folder.file("out")},
           {"CORVANE_INSTALL_LOCATION", "C:/tools"}});
  EXPECT_EQ(program.exitCode, 0U) << program.errors;
  const std::vector<std::string> log = lines(folder.read("out/.auto.csv"));
  const std::string table =
      folder.read("out/html/columns_1024___64___table.html");
  for (const char *version : {"g0S2", "g0S4", "g0S8", "l0S4", "baseline"}) {
    const std::string name = version;
    EXPECT_EQ(rowsOf("columns,1024,,,64,,," + name + ",", log), 4) << name;
    EXPECT_THAT(table, HasSubstr("<th>" + name + "</th>"));
  }
}

TEST(PlayedBlur, AutotunesOnTwoDimensions) {
  TempFolder folder;
  const Finished program =
      run("played_blur", "--iterations 3 --output " + folder.text(), folder,
          {{"CORVANE_AUTOTUNE", folder.file("out")},
           {"CORVANE_INSTALL_LOCATION", "C:/tools"}});
  EXPECT_EQ(program.exitCode, 0U) << program.errors;
  const std::vector<std::string> log = lines(folder.read("out/.auto.csv"));
  EXPECT_EQ(rowsOf("blur,96,60,,16,4,,r0S1c1S4,", log), 4);
  EXPECT_EQ(rowsOf("blur,96,60,,16,4,,baseline,", log), 4);
  EXPECT_THAT(folder.read("out/html/index.html"),
              HasSubstr("blur [ x:96/16, y:60/4 ]"));
}
