// Tests that the application runs on, after one line that says why, when the
// agent cannot start.

#include "tests/support/TempFolder.h"
#include "tests/system/ExampleRun.h"

#include <gmock/gmock.h>

using namespace corvane::test;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

/// Runs an example with \p layer and expects what it would do without one, and
/// one line about \p reason.
static void expectUntouched(const std::string &layer,
                            const std::string &reason) {
  const ExampleRun run =
      runExample({"vector", "--size", "4096", "--iterations", "1"}, layer);
  expectAllRight(run, 2);
  EXPECT_THAT(run.launches, ElementsAre(Launches{2, "sumGroups", "4096", "256"},
                                        Launches{2, "deal", "4096", "256"}));
  EXPECT_THAT(linesOf(run.program.err),
              ElementsAre(AllOf(StartsWith("CorvaneLayer: "), HasSubstr(reason),
                                EndsWith("OpenCL runs on without it."))));
}

TEST(Layer, RunsTheApplicationAloneWithoutAnAgentBesideIt) {
  const TempFolder folder;
  std::filesystem::copy_file(layerLibrary(), folder.file("layer.so"));
  expectUntouched(folder.file("layer.so"), folder.text());
}

TEST(Layer, RunsTheApplicationAloneBesideAFileThatIsNoLibrary) {
  const TempFolder folder;
  std::filesystem::copy_file(layerLibrary(), folder.file("layer.so"));
  const std::filesystem::path agent = agentLibrary();
  ASSERT_TRUE(folder.write(agent.filename().string(), "no library"));
  expectUntouched(folder.file("layer.so"), "cannot be loaded");
}

TEST(Layer, RunsTheApplicationAloneBesideAnAgentWithoutTheExports) {
  expectUntouched(layerBeside("NamelessAgent"), "clAgent_OnUnload");
}

TEST(Layer, RunsTheApplicationAloneWhenTheAgentRefuses) {
  expectUntouched(layerBeside("RefusingAgent"), "status -5");
}

TEST(Layer, DoesNotMindBeingNamedTwice) {
  const ExampleRun run =
      runExample({"vector", "--size", "4096", "--iterations", "1"},
                 layerLibrary() + ":" + layerLibrary());
  expectAllRight(run, 2);
  EXPECT_THAT(run.launches,
              ElementsAre(Launches{2, "sumGroups_coarsed_l0S4", "1024", "64"},
                          Launches{2, "deal_coarsed_g0S4", "1024", "256"}));
}
