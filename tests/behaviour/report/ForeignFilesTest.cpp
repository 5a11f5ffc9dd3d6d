// Tests of links, pipes and devices under the names of result files. On Posix
// systems any user may make them.

#include "tests/behaviour/launch/Application.h"
#include "tests/support/ErrorCapture.h"

#include "agent/Environment.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <filesystem>
#include <optional>

#include <sys/stat.h>

using namespace corvane;
using namespace corvane::test;
using testing::HasSubstr;
using testing::Not;
namespace fs = std::filesystem;

namespace {

constexpr const char *header =
    "kernel,x_global,y_global,z_global,x_local,y_local,z_local,"
    "coarsed_kernel,time\n";
constexpr const char *row = "k,16,,,0,,,baseline,2.000\n";

/// An application whose output folder has such files before the agent is
/// loaded.
struct ForeignFiles : testing::Test {
  TempFolder folder;
  ErrorCapture errors;
  std::optional<Application> app;
  cl_kernel kernel = nullptr;

  void SetUp() override { folder.write("precious", "text of the user\n"); }

  void link(const std::string &name, const std::string &target) const {
    fs::remove(folder.file(name));
    fs::create_symlink(target, folder.file(name));
  }
  void pipe(const std::string &name) const {
    fs::remove(folder.file(name));
    ASSERT_EQ(mkfifo(folder.file(name).c_str(), 0600), 0);
  }

  void load() {
    app.emplace(Variables{{variable::autotune, folder.text()},
                          {variable::installLocation, folder.text()}});
    app->program.kernel("k");
    app->runtime.takes("k", {2000});
    kernel = app->create("k");
  }
  void launch() { EXPECT_EQ(app->launch(kernel, {16}), CL_SUCCESS); }

  void expectPreciousText() const {
    EXPECT_EQ(folder.read("precious"), "text of the user\n");
  }
  std::string refusal(const std::string &name) const {
    return "CV: " + folder.text() + "/" + name +
           " is not a regular file and is not used.\n";
  }
  std::string invalid() const {
    return "CV: " + folder.text() +
           " is invalid. There will be no autotune output generated.\n";
  }
};

} // namespace

TEST_F(ForeignFiles, LinkInPlaceOfTheLogAtTheLoadLeavesItsTargetAlone) {
  link(".auto.csv", "precious");
  load();
  launch();
  expectPreciousText();
  EXPECT_EQ(errors.text(), refusal(".auto.csv") + invalid());
}

TEST_F(ForeignFiles, PipeInPlaceOfTheLogAtTheLoadIsNotWaitedFor) {
  pipe(".auto.csv");
  load();
  launch();
  app->agent.unload();
  EXPECT_EQ(errors.text(), refusal(".auto.csv") + invalid());
}

TEST_F(ForeignFiles, LinkInPlaceOfTheLogGetsNoRowAndTheRowsComeLater) {
  load();
  link(".auto.csv", "precious");
  launch();
  launch();
  expectPreciousText();
  EXPECT_EQ(errors.text(), refusal(".auto.csv"));

  fs::remove(folder.file(".auto.csv"));
  app->agent.unload();
  EXPECT_EQ(folder.read(".auto.csv"), std::string(header) + row + row);
}

TEST_F(ForeignFiles, PipeInPlaceOfTheLogHoldsUpNeitherLaunchNorFlush) {
  load();
  pipe(".auto.csv");
  launch();
  app->agent.unload();
  EXPECT_THAT(errors.text(), HasSubstr(refusal(".auto.csv")));
  EXPECT_EQ(folder.read("autotune.csv"),
            "kernel,x_global,y_global,z_global,x_local,y_local,z_local,"
            "coarsed_kernel,time,outlier\n");
}

TEST_F(ForeignFiles, EndlessDeviceInPlaceOfTheLogIsNotReadAtTheFlush) {
  load();
  link(".auto.csv", "/dev/zero");
  app->agent.unload();
  EXPECT_EQ(errors.text(), refusal(".auto.csv"));
  EXPECT_TRUE(folder.has("main.html"));
}

TEST_F(ForeignFiles, LinksInPlaceOfTableAndPagesLeaveTheirTargetAlone) {
  load();
  launch();
  fs::create_directory(folder.file("html"));
  link("autotune.csv", "precious");
  link("main.html", "precious");
  link("html/k_16___0___table.html", "../precious");
  app->agent.unload();
  expectPreciousText();
  EXPECT_EQ(errors.text(), refusal("html/k_16___0___table.html") +
                               refusal("autotune.csv") + refusal("main.html"));
  EXPECT_TRUE(folder.has("html/k_16___0__.html"));
}

TEST_F(ForeignFiles, PipesInPlaceOfTableAndPagesDoNotHoldUpTheFlush) {
  load();
  launch();
  fs::create_directory(folder.file("html"));
  pipe("autotune.csv");
  pipe("html/index.html");
  app->agent.unload();
  EXPECT_THAT(folder.read("main.html"), HasSubstr("html/k_16___0__.html"));
  EXPECT_EQ(errors.text(),
            refusal("autotune.csv") + refusal("html/index.html"));
}

TEST_F(ForeignFiles, FolderByALinkIsTheUsersChoice) {
  fs::create_directory(folder.file("real"));
  fs::create_directory_symlink("real", folder.file("linked"));
  app.emplace(Variables{{variable::autotune, folder.file("linked")},
                        {variable::installLocation, folder.text()}});
  app->program.kernel("k");
  kernel = app->create("k");
  launch();
  app->agent.unload();
  EXPECT_THAT(folder.read("real/.auto.csv"), HasSubstr("\nk,16,"));
  EXPECT_THAT(folder.read("real/main.html"), Not(testing::IsEmpty()));
  EXPECT_EQ(errors.text(), "");
}
