// Tests that the application runs on, after one line that says why, when the
// agent cannot start.

#include "tests/support/TempFolder.h"
#include "tests/system/ExampleRun.h"
#include "tests/system/LoadedLayer.h"

#include <gmock/gmock.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <vector>

#include <unistd.h>

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

TEST(Layer, RunsTheApplicationAloneWhenItsLineHasNoReader) {
  const TempFolder folder;
  std::filesystem::copy_file(layerLibrary(), folder.file("layer.so"));
  const auto startWithoutReader = [&folder] {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe(ends.data()), 0);
    close(ends[0]);
    dup2(ends[1], STDERR_FILENO);
    std::signal(SIGPIPE, SIG_DFL);
    const LoadedLayer layer(folder.file("layer.so"));
    constexpr cl_uint entries = sizeof(cl_icd_dispatch) / sizeof(void *);
    const std::vector<void *> table = loaderTableOf(entries);
    cl_uint count = 0;
    const cl_icd_dispatch *answer = nullptr;
    (void)layer.initLayer(
        entries, reinterpret_cast<const cl_icd_dispatch *>(table.data()),
        &count, &answer);
    const void *const given = answer;
    std::_Exit(given == table.data() ? 7 : 1);
  };
  EXPECT_EXIT(startWithoutReader(), testing::ExitedWithCode(7), "");
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
