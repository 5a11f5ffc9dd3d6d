// Tests of files that take only a part of what is written to them.

#include "TestState.h"
#include "results/Files.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

using namespace corvane;
using namespace corvane::test;

namespace {

struct FullDisk : testing::Test {
  TempFolder folder;
  EnvGuard directory{"CORVANE_AUTOTUNE", folder.text()};
  TestState state;
  LaunchRecord &launch = state.addLaunch("k", 1, {2, 0, 0}, {1, 0, 0});
};

constexpr const char *row = "k,2,,,1,,,baseline,1.000\n";

} // namespace

TEST_F(FullDisk, LeavesTheLogAsItWasAndWritesTheRowWhenThereIsSpaceAgain) {
  state.complete(launch, "", 1000);
  const std::string whole = std::string(logHeaderText) + row;
  {
    const FileSizeLimit limit(whole.size() + 10);
    state.complete(launch, "", 2000);
    EXPECT_EQ(folder.read(".auto.csv"), whole);
  }
  state.complete(launch, "", 3000);
  EXPECT_EQ(folder.read(".auto.csv"), whole + "k,2,,,1,,,baseline,2.000\n"
                                              "k,2,,,1,,,baseline,3.000\n");
}

TEST_F(FullDisk, EndsARewriteAfterTheLastRowThatFits) {
  const std::string fitting = std::string(logHeaderText) + row + row;
  directory.set(nullptr);
  for (int i = 0; i != 5; ++i)
    state.complete(launch, "", 1000);
  directory.set(folder.text());
  const FileSizeLimit limit(fitting.size() + 10);
  state.complete(launch, "", 1000);
  EXPECT_EQ(folder.read(".auto.csv"), fitting);
}

TEST_F(FullDisk, DoesNotEndTheProcessThatWritesAPage) {
  const std::string path = folder.file("page.html");
  {
    const FileSizeLimit limit(100);
    OutputFile out(path);
    out << std::string(500'000, 'x');
  }
  EXPECT_EQ(folder.read("page.html"), std::string(100, 'x'));
}
