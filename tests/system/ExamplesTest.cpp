// Tests of the examples, without and with the agent, on a real OpenCL runtime.

#include "examples/blur/Landscape.h"
#include "tests/support/TempFolder.h"
#include "tests/system/ExampleRun.h"

#include <gmock/gmock.h>

using namespace corvane::test;
using testing::ElementsAre;

// The warning is part of the interface, byte for byte.
static const char refusal[] =
    "Corvane's kernel cannot be launch due to incompatible ND range values or "
    "non-expected input scalar values\n";

static std::vector<std::string> smallMatmul() {
  return {"matmul", "--size", "64", "--odd-depth", "62", "--iterations", "2"};
}

static std::vector<std::string> smallVector(const std::string &size) {
  return {"vector", "--size", size, "--iterations", "2"};
}

static std::vector<std::string> smallBlur(const TempFolder &folder) {
  return {"blur", "--iterations", "2", "--output", folder.text()};
}

TEST(MatmulExample, RunsItsOwnKernelWithoutTheLayer) {
  const ExampleRun run = runExample(smallMatmul(), "");
  expectAllRight(run, 2);
  EXPECT_THAT(run.launches,
              ElementsAre(Launches{6, "matmul", "64x64", "16x4"}));
  EXPECT_EQ(run.program.err, "");
}

TEST(MatmulExample, RunsTheVariantWhereItsConditionsHold) {
  const ExampleRun run = runExample(smallMatmul(), layerLibrary());
  expectAllRight(run, 2);
  EXPECT_THAT(
      run.launches,
      ElementsAre(Launches{3, "matmul_coarsed_g0S4d3S4", "16x64", "16x4"},
                  Launches{3, "matmul", "64x64", "16x4"}));
}

TEST(MatmulExample, IsToldOfEveryLaunchWhoseArgumentsDoNotFit) {
  const ExampleRun run = runExample(smallMatmul(), layerLibrary());
  EXPECT_EQ(run.program.err, std::string(refusal) + refusal + refusal);
}

TEST(MatmulExample, LeavesTheLaunchesOfVariantsInTheDiagnosticLog) {
  const TempFolder folder;
  const ExampleRun run = runExample(smallMatmul(), layerLibrary(),
                                    {{"CORVANE_DUMP_LOG", folder.file("log")}});
  expectAllRight(run, 2);
  EXPECT_THAT(linesOf(folder.read("log")),
              testing::Contains("Corvane's generated kernel will be launched")
                  .Times(3));
}

TEST(BlurExample, RunsItsOwnKernelWithoutTheLayer) {
  const TempFolder folder;
  const ExampleRun run = runExample(smallBlur(folder), "");
  expectAllRight(run, 1);
  EXPECT_THAT(run.launches,
              ElementsAre(Launches{3, "blur", "480x300", "16x4"}));
}

TEST(BlurExample, RunsTheVariantOverAnNDRangeRoundedUp) {
  const TempFolder folder;
  const ExampleRun run = runExample(smallBlur(folder), layerLibrary());
  expectAllRight(run, 1);
  EXPECT_THAT(run.launches, ElementsAre(Launches{3, "blur_coarsed_r0S1c1S4",
                                                 "480x76", "16x4"}));
  EXPECT_EQ(run.program.err, "");
}

TEST(BlurExample, KeepsToTheEdgesOfASmallPicture) {
  const TempFolder folder;
  examples::writePicture(examples::paintLandscape(37, 21),
                         folder.file("p.png"));
  std::vector<std::string> command = smallBlur(folder);
  command.insert(command.end(), {"--picture", folder.file("p.png")});
  const ExampleRun run = runExample(command, layerLibrary());
  expectAllRight(run, 1);
  EXPECT_THAT(run.launches, ElementsAre(Launches{3, "blur_coarsed_r0S1c1S4",
                                                 "48x8", "16x4"}));
}

TEST(BlurExample, WritesThePictureBeforeAndAfter) {
  const TempFolder folder;
  expectAllRight(runExample(smallBlur(folder), layerLibrary()), 1);
  ASSERT_TRUE(folder.has("blur-before.png"));
  ASSERT_TRUE(folder.has("blur-after.png"));
  const examples::Picture before =
      examples::readPicture(folder.file("blur-before.png"));
  const examples::Picture after =
      examples::readPicture(folder.file("blur-after.png"));
  EXPECT_EQ(before.pixels, examples::paintLandscape(480, 300).pixels);
  EXPECT_EQ(after.width, before.width);
  EXPECT_EQ(after.height, before.height);
  EXPECT_NE(after.pixels, before.pixels);
}

TEST(VectorExample, RunsItsOwnKernelsWithoutTheLayer) {
  const ExampleRun run = runExample(smallVector("4096"), "");
  expectAllRight(run, 2);
  EXPECT_THAT(run.launches, ElementsAre(Launches{3, "sumGroups", "4096", "256"},
                                        Launches{3, "deal", "4096", "256"}));
}

TEST(VectorExample, RunsVariantsOneOfWhichNeedsTheGroupCounts) {
  const ExampleRun run = runExample(smallVector("4096"), layerLibrary());
  expectAllRight(run, 2);
  EXPECT_THAT(run.launches,
              ElementsAre(Launches{3, "sumGroups_coarsed_l0S4", "1024", "64"},
                          Launches{3, "deal_coarsed_g0S4", "1024", "256"}));
  EXPECT_EQ(run.program.err, "");
}

TEST(VectorExample, RunsItsOwnKernelSilentlyOverAnNDRangeThatNoVariantAccepts) {
  const ExampleRun run = runExample(smallVector("768"), layerLibrary());
  expectAllRight(run, 2);
  EXPECT_THAT(run.launches,
              ElementsAre(Launches{3, "sumGroups_coarsed_l0S4", "192", "64"},
                          Launches{3, "deal", "768", "256"}));
  EXPECT_EQ(run.program.err, "");
}

TEST(AutotunedExample, LeavesItsResultsWhenTheProcessEnds) {
  const TempFolder folder;
  const ExampleRun run =
      runExample(smallMatmul(), layerLibrary(),
                 {{"CORVANE_AUTOTUNE", folder.text()},
                  {"CORVANE_INSTALL_LOCATION", folder.text()}});
  expectAllRight(run, 2);
  EXPECT_EQ(run.program.err, "");
  EXPECT_TRUE(folder.has("autotune.csv"));
  EXPECT_TRUE(folder.has("main.html"));
  EXPECT_TRUE(folder.has("html/index.html"));
}

TEST(AutotunedExample, RunsEveryVariantThatFitsAndThenTheOriginal) {
  const TempFolder folder;
  const ExampleRun run = runExample(smallMatmul(), layerLibrary(),
                                    {{"CORVANE_AUTOTUNE", folder.text()}});
  expectAllRight(run, 2);
  const Launches variant = {1, "matmul_coarsed_g0S4d3S4", "16x64", "16x4"};
  const Launches original = {1, "matmul", "64x64", "16x4"};
  // No variant accepts the second product, so its launches are of the kernel,
  // too.
  const Launches lastOriginals = {4, "matmul", "64x64", "16x4"};
  EXPECT_THAT(run.launches, ElementsAre(variant, original, variant, original,
                                        variant, lastOriginals));
}

TEST(AutotunedExample, KeepsTheRawLogWhenItHasNoInstallLocation) {
  const TempFolder folder;
  const ExampleRun run = runExample(smallMatmul(), layerLibrary(),
                                    {{"CORVANE_AUTOTUNE", folder.text()}});
  expectAllRight(run, 2);
  EXPECT_EQ(run.program.err, "CV: unable to find $CORVANE_INSTALL_LOCATION.\n");
  EXPECT_TRUE(folder.has(".auto.csv"));
  EXPECT_FALSE(folder.has("autotune.csv"));
}
