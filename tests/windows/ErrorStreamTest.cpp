// Tests that standard error and the files get bytes as they are written,
// without the C runtime's text mode.

#include "tests/support/ErrorCapture.h"
#include "tests/support/FakeRuntime.h"
#include "tests/support/LoadedAgent.h"
#include "tests/support/TempFolder.h"

#include "gtest/gtest.h"

#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <io.h>

using namespace corvane::test;

static void failOnce(const LoadedAgent &agent) {
  agent.table().clReleaseProgram(nullptr);
}

static constexpr const char *failure =
    "QrlAgent:: 148: CL Error: CL_INVALID_PROGRAM\n";

TEST(ErrorStream, WritesALineFeedAsOneByteAfterTextMode) {
  FakeRuntime runtime;
  runtime.answer("clReleaseProgram", CL_INVALID_PROGRAM);
  LoadedAgent agent(runtime);
  ErrorCapture errors;
  _setmode(2, _O_TEXT);
  std::fputs("text\n", stderr);
  std::fflush(stderr);
  failOnce(agent);
  EXPECT_EQ(errors.text(), std::string("text\r\n") + failure);
}

TEST(ErrorStream, KeepsTheModeThatTheApplicationHasUntilItIsUsed) {
  FakeRuntime runtime;
  ErrorCapture errors;
  _setmode(2, _O_TEXT);
  LoadedAgent agent(runtime);
  std::fputs("text\n", stderr);
  std::fflush(stderr);
  EXPECT_EQ(errors.text(), "text\r\n");
}

TEST(Files, AreBytesEvenIfTextIsTheDefault) {
  _fmode = _O_TEXT;
  TempFolder folder;
  FakeRuntime runtime;
  LoadedAgent agent(runtime, {{"CORVANE_AUTOTUNE", folder.text()},
                              {"CORVANE_INSTALL_LOCATION", "C:/tools"}});
  agent.unload();
  for (const char *name :
       {".auto.csv", "autotune.csv", "main.html", "html/index.html"}) {
    const std::string bytes = folder.read(name);
    EXPECT_NE(bytes.find('\n'), std::string::npos) << name;
    EXPECT_EQ(bytes.find('\r'), std::string::npos) << name;
  }
}
