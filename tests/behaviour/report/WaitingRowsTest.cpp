// Tests of rows that could not be written to the raw timing log when their runs
// completed.

#include "tests/behaviour/launch/Application.h"

#include "agent/Environment.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <filesystem>

using namespace corvane;
using namespace corvane::test;
using testing::HasSubstr;

namespace {

struct WaitingRows : testing::Test {
  TuningApplication app;
  cl_kernel kernel = nullptr;

  void SetUp() override {
    app.program.kernel("k").kernel("k_coarsed_g0S4");
    app.runtime.takes("k_coarsed_g0S4", {1000});
    app.runtime.takes("k", {2000});
    kernel = app.create("k");
  }

  void launch() { EXPECT_EQ(app.launch(kernel, {16}, {2}), CL_SUCCESS); }

  /// The text of a log with the rows of one launch.
  std::string oneLaunch() const {
    return std::string(app.header) + "k,16,,,2,,,g0S4,1.000\n"
                                     "k,16,,,2,,,baseline,2.000\n";
  }
};

} // namespace

TEST_F(WaitingRows, AreWrittenAtTheFlushToTheFolderThatItCreates) {
  std::filesystem::remove_all(app.folder.path());
  launch();
  EXPECT_FALSE(app.folder.has(""));

  app.agent.unload();
  EXPECT_EQ(app.log(), oneLaunch());
  EXPECT_THAT(app.folder.read("autotune.csv"),
              HasSubstr("k,16,,,2,,,baseline,2, \n"));
  EXPECT_TRUE(app.folder.has("html/k_16___2___table.html"));
}

TEST_F(WaitingRows, AreWrittenAtTheFlushWithoutAnInstallLocation) {
  const EnvGuard location(variable::installLocation, nullptr);
  const EnvGuard directory(variable::autotune, app.folder.file("missing"));
  launch();
  assignVariable(variable::autotune, app.folder.text().c_str());
  EXPECT_EQ(app.log(), app.header);

  app.agent.unload();
  EXPECT_EQ(app.log(), oneLaunch());
  EXPECT_FALSE(app.folder.has("autotune.csv"));
}

TEST_F(WaitingRows, OfALogThatWasDeletedSinceComeWithAllOthers) {
  launch();
  EXPECT_EQ(app.log(), oneLaunch());
  {
    const EnvGuard directory(variable::autotune, nullptr);
    launch();
  }
  std::filesystem::remove(app.folder.file(app.logName));

  app.agent.unload();
  EXPECT_EQ(app.log(), oneLaunch() + "k,16,,,2,,,g0S4,1.000\n"
                                     "k,16,,,2,,,baseline,2.000\n");
}

TEST_F(WaitingRows, AreNotThereAfterALogThatTookAllAndWasDeleted) {
  launch();
  std::filesystem::remove(app.folder.file(app.logName));
  app.agent.unload();
  EXPECT_FALSE(app.folder.has(app.logName));
}
