// Tests of a diagnostic log whose name is that of a link, a pipe or a device,
// on Posix systems.

#include "tests/behaviour/Calls.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TempFolder.h"

#include "gtest/gtest.h"

#include <filesystem>
#include <string>

#include <sys/stat.h>

using namespace corvane;
using namespace corvane::test;

// Loads the agent in a process whose log is \p path, and ends that.
static void endWithLogAt(const std::string &path) {
  assignForGood("CORVANE_DUMP_LOG", path.c_str());
  FakeRuntime runtime;
  const LoadedAgent agent(runtime, {{"CORVANE_DUMP_LOG", path}});
}

static bool isOneRefusal(const std::string &text) {
  const std::string end = "/log.txt.odd is not a regular file and is not "
                          "used.\n";
  return text.rfind("CV: ", 0) == 0 && text.find('\n') == text.size() - 1 &&
         text.size() > end.size() &&
         text.compare(text.size() - end.size(), end.size(), end) == 0;
}

TEST(UnfitLog, ThatIsALinkIsRefusedAndItsTargetStaysAsItIs) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    writeBytes(log + ".target", "precious");
    std::filesystem::create_symlink("log.txt.target", log + ".odd");
    endWithLogAt(log + ".odd");
  });
  EXPECT_EQ(ended.files.at("log.txt.target"), "precious");
  EXPECT_PRED1(isOneRefusal, ended.errorText);
}

// If the agent opened the pipe to write, it would wait for a reader for ever.
TEST(UnfitLog, ThatIsAPipeIsRefused) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    EXPECT_EQ(mkfifo((log + ".odd").c_str(), 0600), 0);
    endWithLogAt(log + ".odd");
  });
  EXPECT_PRED1(isOneRefusal, ended.errorText);
}

TEST(UnfitLog, ThatIsADeviceIsRefused) {
  const Ended ended =
      runToItsEnd([](const std::string &) { endWithLogAt("/dev/zero"); });
  EXPECT_EQ(ended.errorText,
            "CV: /dev/zero is not a regular file and is not used.\n");
}
