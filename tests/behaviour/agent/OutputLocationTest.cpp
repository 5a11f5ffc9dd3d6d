// Tests of the output location, which is checked and decided at the load.

#include "tests/behaviour/Calls.h"
#include "tests/support/ErrorCapture.h"
#include "tests/support/TempFolder.h"

#include "gtest/gtest.h"

#include <filesystem>

using namespace corvane;
using namespace corvane::test;

namespace {
class OutputLocation : public testing::Test {
protected:
  static constexpr const char *header =
      "kernel,x_global,y_global,z_global,x_local,y_local,z_local,"
      "coarsed_kernel,time\n";

  static std::string complaintAbout(const std::string &directory) {
    return "CV: " + directory +
           " is invalid. There will be no autotune output generated.\n";
  }

  // Loads with the directory and tells whether the agent autotunes then.
  bool autotunesWith(const std::string &directory) {
    const ErrorCapture errors;
    LoadedAgent agent(runtime, {{"CORVANE_AUTOTUNE", directory}});
    EXPECT_EQ(agent.status(), CL_SUCCESS);
    complaint = errors.text();
    return isAutotuning(runtime, agent.table());
  }

  FakeRuntime runtime;
  TempFolder folder;
  std::string complaint; ///< what the load wrote on standard error
};
} // namespace

TEST_F(OutputLocation, UndefinedMeansNoAutotuningAndNoMessage) {
  const ErrorCapture errors;
  LoadedAgent agent(runtime);
  EXPECT_FALSE(isAutotuning(runtime, agent.table()));
  EXPECT_EQ(errors.text(), "");
}

TEST_F(OutputLocation, IsCreatedWithATimingLogThatHasItsHeader) {
  EXPECT_TRUE(autotunesWith(folder.file("new")));
  EXPECT_EQ(folder.read("new/.auto.csv"), header);
  EXPECT_EQ(complaint, "");
}

TEST_F(OutputLocation, MayExistAlreadyAndItsOldTimingsGo) {
  folder.write(".auto.csv", "something old\nand longer than the header is\n");
  EXPECT_TRUE(autotunesWith(folder.text()));
  EXPECT_EQ(folder.read(".auto.csv"), header);
}

TEST_F(OutputLocation, LosesItsTimingsAtEveryLoad) {
  LoadedAgent agent(runtime, {{"CORVANE_AUTOTUNE", folder.text()}});
  folder.write(".auto.csv", "something");
  agent.loadAgain();
  EXPECT_EQ(folder.read(".auto.csv"), header);
}

TEST_F(OutputLocation, InAFolderThatDoesNotExistIsComplainedAbout) {
  const std::string directory = folder.file("missing/new");
  EXPECT_FALSE(autotunesWith(directory));
  EXPECT_EQ(complaint, complaintAbout(directory));
  EXPECT_FALSE(folder.has("missing"));
}

TEST_F(OutputLocation, ThatIsAFileIsComplainedAbout) {
  folder.write("file", "x");
  EXPECT_FALSE(autotunesWith(folder.file("file")));
  EXPECT_EQ(complaint, complaintAbout(folder.file("file")));
  EXPECT_EQ(folder.read("file"), "x");
}

TEST_F(OutputLocation, WhoseTimingLogCannotBeOpenedIsComplainedAbout) {
  std::filesystem::create_directory(folder.path() / ".auto.csv");
  EXPECT_FALSE(autotunesWith(folder.text()));
  EXPECT_EQ(complaint, complaintAbout(folder.text()));
}

TEST_F(OutputLocation, IsUsedAsItIsWrittenWithATrailingSeparator) {
  EXPECT_TRUE(autotunesWith(folder.text() + "/"));
  EXPECT_EQ(folder.read(".auto.csv"), header);

  EXPECT_FALSE(autotunesWith(folder.file("missing/new/")));
  EXPECT_EQ(complaint, complaintAbout(folder.file("missing/new/")));
}

TEST_F(OutputLocation, IsNotTrimmed) {
  EXPECT_TRUE(autotunesWith(folder.file(" two blanks")));
  EXPECT_TRUE(folder.has(" two blanks/.auto.csv"));
}

TEST_F(OutputLocation, DoesNotDependOnTheReservedVariable) {
  for (const char *value : {"", "0", "/nowhere"}) {
    EnvGuard reserved("CORVANE", value);
    EXPECT_TRUE(autotunesWith(folder.text()));
    EXPECT_EQ(complaint, "");
    LoadedAgent agent(runtime);
    EXPECT_FALSE(isAutotuning(runtime, agent.table()));
  }
}

TEST_F(OutputLocation, IsDecidedOnceALoad) {
  {
    LoadedAgent agent(runtime, {{"CORVANE_AUTOTUNE", folder.text()}});
    EnvGuard gone("CORVANE_AUTOTUNE", nullptr);
    EXPECT_TRUE(isAutotuning(runtime, agent.table()));
  }
  LoadedAgent agent(runtime);
  EnvGuard late("CORVANE_AUTOTUNE", folder.text());
  EXPECT_FALSE(isAutotuning(runtime, agent.table()));
}

TEST_F(OutputLocation, IsDecidedAnewByTheNextLoad) {
  EXPECT_TRUE(autotunesWith(folder.text()));
  EXPECT_FALSE(autotunesWith(folder.file("missing/new")));
  EXPECT_TRUE(autotunesWith(folder.text()));
}
