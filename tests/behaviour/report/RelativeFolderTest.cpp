// Tests of an output directory that is named from the current folder.

#include "tests/behaviour/launch/Application.h"

#include "agent/Environment.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <filesystem>

using namespace corvane;
using namespace corvane::test;
using testing::HasSubstr;
namespace fs = std::filesystem;

namespace {

/// Puts the current folder back at the end of the test.
class CurrentFolder {
public:
  explicit CurrentFolder(const fs::path &folder) { fs::current_path(folder); }
  ~CurrentFolder() { fs::current_path(before); }
  CurrentFolder(const CurrentFolder &) = delete;
  CurrentFolder &operator=(const CurrentFolder &) = delete;

private:
  fs::path before = fs::current_path();
};

/// An application that is started in one folder and goes to another.
struct RelativeFolder : testing::Test {
  TempFolder start;
  TempFolder elsewhere;
  CurrentFolder current{start.path()};
  Application app{
      {{variable::autotune, "out"}, {variable::installLocation, start.text()}}};

  void launchElsewhere() {
    app.program.kernel("k");
    app.runtime.takes("k", {2000});
    cl_kernel kernel = app.create("k");
    fs::current_path(elsewhere.path());
    EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  }
  static std::string log() {
    return "kernel,x_global,y_global,z_global,x_local,y_local,z_local,"
           "coarsed_kernel,time\n"
           "k,16,,,0,,,baseline,2.000\n";
  }
};

} // namespace

TEST_F(RelativeFolder, GetsTheRowsWhereverTheApplicationGoes) {
  launchElsewhere();
  EXPECT_EQ(start.read("out/.auto.csv"), log());
  EXPECT_TRUE(fs::is_empty(elsewhere.path()));
}

TEST_F(RelativeFolder, GetsTableAndReportWhereverTheApplicationGoes) {
  launchElsewhere();
  app.agent.unload();
  EXPECT_THAT(start.read("out/autotune.csv"),
              HasSubstr("\nk,16,,,0,,,baseline,2, \n"));
  EXPECT_TRUE(start.has("out/main.html"));
  EXPECT_TRUE(start.has("out/html/k_16___0___table.html"));
  EXPECT_TRUE(fs::is_empty(elsewhere.path()));
}

TEST_F(RelativeFolder, NamedLaterIsLookedForFromTheSamePlace) {
  fs::create_directory(start.path() / "later");
  const EnvGuard later(variable::autotune, "later");
  launchElsewhere();
  EXPECT_EQ(start.read("later/.auto.csv"), log());
  EXPECT_TRUE(fs::is_empty(elsewhere.path()));
}
