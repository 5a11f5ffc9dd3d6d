// Tests of the platform functions on Windows.

#include "base/Platform.h"
#include "agent/Environment.h"
#include "tests/behaviour/Calls.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/FakeRuntime.h"
#include "tests/support/LoadedAgent.h"
#include "tests/support/TempFolder.h"

#include "llvm/ADT/ScopeExit.h"

#include "gtest/gtest.h"

#include <cstdio>
#include <cstdlib>
#include <vector>

#include <io.h>
#include <windows.h>

using namespace corvane;
using namespace corvane::test;

TEST(Platform, SeparatesTheHtmlFolderWithABackslash) {
  EXPECT_STREQ(platform::directorySeparator, "\\");
}

TEST(Platform, CreatesADirectoryOnceAndAcceptsItAfterwards) {
  TempFolder folder;
  const std::string path = folder.text() + "\\new";
  EXPECT_TRUE(platform::createDirectory(path.c_str()));
  EXPECT_TRUE(folder.has("new"));
  EXPECT_TRUE(platform::createDirectory(path.c_str()));
}

TEST(Platform, CreatesOneLevelOnly) {
  TempFolder folder;
  const std::string path = folder.text() + "\\missing\\new";
  EXPECT_FALSE(platform::createDirectory(path.c_str()));
  EXPECT_FALSE(folder.has("missing"));
}

TEST(Platform, DefinesAVariableForTheSystemToo) {
  EnvGuard guard("CORVANE_TEST_VARIABLE", nullptr);
  platform::defineVariable("CORVANE_TEST_VARIABLE", "a=b c");
  EXPECT_STREQ(std::getenv("CORVANE_TEST_VARIABLE"), "a=b c");
  char text[16] = "";
  EXPECT_EQ(GetEnvironmentVariableA("CORVANE_TEST_VARIABLE", text, 16), 5U);
  EXPECT_STREQ(text, "a=b c");
}

TEST(Platform, RemovesAVariableByAnEmptyAssignment) {
  EnvGuard guard("CORVANE_TEST_VARIABLE", "value");
  platform::defineVariable("CORVANE_TEST_VARIABLE", "");
  EXPECT_EQ(std::getenv("CORVANE_TEST_VARIABLE"), nullptr);

  guard.set("value");
  platform::removeVariable("CORVANE_TEST_VARIABLE");
  EXPECT_EQ(std::getenv("CORVANE_TEST_VARIABLE"), nullptr);
}

TEST(Platform, CutsAFileAfterAGivenLength) {
  TempFolder folder;
  folder.write("file", "0123456789");
  std::FILE *file = std::fopen(folder.file("file").c_str(), "r+b");
  ASSERT_TRUE(file);
  std::setvbuf(file, nullptr, _IONBF, 0);
  platform::cutFile(file, 4);
  std::fclose(file);
  EXPECT_EQ(folder.read("file"), "0123");
}

TEST(Platform, RefusesADeviceInThePlaceOfAFile) {
  using platform::FileUse;
  for (const FileUse use : {FileUse::Read, FileUse::Replace, FileUse::Append}) {
    const platform::OpenedFile opened = platform::openRegularFile("NUL", use);
    EXPECT_FALSE(opened.file);
    EXPECT_TRUE(opened.refused);
  }
}

TEST(Platform, KeepsFilesFromOtherPrograms) {
  TempFolder folder;
  const platform::OpenedFile opened = platform::openRegularFile(
      folder.file("file"), platform::FileUse::Replace);
  ASSERT_TRUE(opened.file);
  const auto handle =
      reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(opened.file.get())));
  DWORD flags = 0;
  ASSERT_TRUE(GetHandleInformation(handle, &flags));
  EXPECT_EQ(flags & HANDLE_FLAG_INHERIT, 0U);
}

TEST(Platform, KnowsWhereMemoryLies) {
  const int here = 0;
  EXPECT_TRUE(platform::isOccupied(&here));
  EXPECT_FALSE(platform::isOccupied(nullptr));
  void *const page =
      VirtualAlloc(nullptr, 1, MEM_RESERVE | MEM_COMMIT, PAGE_NOACCESS);
  ASSERT_TRUE(page);
  EXPECT_TRUE(platform::isOccupied(page));
  VirtualFree(page, 0, MEM_RELEASE);
  EXPECT_FALSE(platform::isOccupied(page));
}

// The application and the DLL share an environment: that of the C runtime that
// both are linked with.
TEST(Environment, OfTheApplicationIsSeenWhenItChangesAfterTheLoad) {
  TempFolder folder;
  FakeRuntime runtime;
  LoadedAgent agent(runtime, {{"CORVANE_AUTOTUNE", folder.text()}});
  EnvGuard location("CORVANE_INSTALL_LOCATION", "C:\\late");
  agent.unload();
  EXPECT_TRUE(folder.has("autotune.csv"));
}

TEST(Environment, IsThatOfTheCRuntimeAndNotOfTheSystem) {
  TempFolder folder;
  FakeRuntime runtime;
  LoadedAgent agent(runtime, {{"CORVANE_AUTOTUNE", folder.text()}});
  SetEnvironmentVariableA("CORVANE_INSTALL_LOCATION", "C:\\late");
  agent.unload();
  SetEnvironmentVariableA("CORVANE_INSTALL_LOCATION", nullptr);
  EXPECT_FALSE(folder.has("autotune.csv"));
}

// An empty folder means the root of the current drive. Under Wine this is the
// root of the system, where the log would be in the way of other tests.
TEST(Environment, IsCleanOfAnEmptyVariableThatTheCompilerMustNotSee) {
  const auto removeLog =
      llvm::make_scope_exit([] { (void)std::remove("/.auto.csv"); });
  FakeRuntime runtime;
  LoadedAgent agent(runtime, {{"CORVANE_AUTOTUNE", ""}});
  ASSERT_TRUE(lookUp("CORVANE_AUTOTUNE"));
  std::vector<bool> seen;
  runtime.whenCalled("clBuildProgram", [&seen] {
    seen.push_back(std::getenv("CORVANE_AUTOTUNE") != nullptr);
  });
  EXPECT_EQ(build(agent.table(), runtime.addProgram().log(spillLog)),
            CL_SUCCESS);
  EXPECT_EQ(seen, (std::vector<bool>{true, false}));
}

// A process may be started with an empty variable; no assignment can make one.
TEST(Environment, MayHaveAVariableThatIsEmpty) {
  EnvGuard empty("CORVANE_TEST_VARIABLE", "");
  EnvGuard another("CORVANE_TEST_ANOTHER", "value");
  ASSERT_TRUE(lookUp("CORVANE_TEST_VARIABLE"));
  EXPECT_STREQ(lookUp("CORVANE_TEST_VARIABLE"), "");
}
