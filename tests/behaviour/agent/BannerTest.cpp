// Tests of the banner of a load that has to wait for the agent lock.

#include "tests/behaviour/Calls.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TempFolder.h"

#include "gtest/gtest.h"

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

#include <unistd.h>

using namespace corvane;
using namespace corvane::test;

// Returns when the thread sleeps. The lock is all that it can be waiting for.
static void waitUntilItSleeps(pid_t thread) {
  const std::string path =
      "/proc/self/task/" + std::to_string(thread) + "/stat";
  for (;;) {
    std::ifstream file(path);
    std::string text;
    std::getline(file, text);
    const std::size_t end = text.rfind(')');
    if (end != std::string::npos && text.compare(end, 3, ") S") == 0)
      return;
    std::this_thread::yield();
  }
}

TEST(Banner, IsWrittenBeforeTheLockIsWaitedFor) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    FakeRuntime runtime;
    LoadedAgent agent(runtime, {{"CORVANE_DUMP_LOG", log}});
    std::atomic<pid_t> other{0};
    runtime.whenCalled("clReleaseKernel", [&] {
      std::thread second([&] {
        other = gettid();
        agent.loadAgain();
      });
      while (other == 0)
        std::this_thread::yield();
      waitUntilItSleeps(other);
      std::exit(EXIT_SUCCESS);
    });
    agent.table().clReleaseKernel(nullptr);
  });
  EXPECT_EQ(ended.diagnosticLog, "Frontend loaded\nFrontend loaded\n");
}
