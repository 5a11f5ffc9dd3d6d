// Tests of the DLLs as files: what they import, what they export, their
// version.

#include "tests/windows/DllFile.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane::test;
using testing::AnyOfArray;
using testing::Each;
using testing::ElementsAre;
using testing::StrCaseEq;

// Matches DLLs that are part of every Windows, and not those of OpenCL, the
// compiler or LLVM.
static auto isWindowsOwn() {
  return AnyOfArray({StrCaseEq("advapi32.dll"), StrCaseEq("kernel32.dll"),
                     StrCaseEq("msvcrt.dll"), StrCaseEq("ole32.dll"),
                     StrCaseEq("shell32.dll")});
}

TEST(AgentDll, NeedsWindowsOwnLibrariesOnly) {
  EXPECT_THAT(DllFile("CorvaneAg.dll").imported(), Each(isWindowsOwn()));
}

TEST(AgentDll, ExportsItsTwoFunctionsOnly) {
  EXPECT_THAT(DllFile("CorvaneAg.dll").exported(),
              ElementsAre("clAgent_OnLoad", "clAgent_OnUnload"));
}

TEST(AgentDll, CarriesTheVersionOfTheProject) {
  const DllFile dll("CorvaneAg.dll");
  EXPECT_EQ(dll.versionNumber(), PROJECT_VERSION ".0");
  EXPECT_EQ(dll.versionText("FileVersion"), PROJECT_VERSION);
  EXPECT_EQ(dll.versionText("ProductName"), "CorvaneAg");
  EXPECT_EQ(dll.versionText("OriginalFilename"), "CorvaneAg.dll");
}

TEST(LayerDll, NeedsWindowsOwnLibrariesOnly) {
  EXPECT_THAT(DllFile("CorvaneLayer.dll").imported(), Each(isWindowsOwn()));
}

TEST(LayerDll, ExportsItsTwoFunctionsOnly) {
  EXPECT_THAT(DllFile("CorvaneLayer.dll").exported(),
              ElementsAre("clGetLayerInfo", "clInitLayer"));
}

TEST(LayerDll, CarriesTheVersionOfTheProject) {
  const DllFile dll("CorvaneLayer.dll");
  EXPECT_EQ(dll.versionNumber(), PROJECT_VERSION ".0");
  EXPECT_EQ(dll.versionText("ProductVersion"), PROJECT_VERSION);
  EXPECT_EQ(dll.versionText("OriginalFilename"), "CorvaneLayer.dll");
}
