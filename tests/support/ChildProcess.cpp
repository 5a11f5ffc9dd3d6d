// Runs a child process by means of a death test, and reads what it has left.

#include "tests/support/ChildProcess.h"

#include "agent/Environment.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/TempFolder.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <cstdlib>
#include <filesystem>
#include <list>
#include <system_error>

using namespace corvane;
using namespace corvane::test;

// The parent tells the child by this variable which file it has chosen.
static constexpr const char *logVariable = "CORVANE_TEST_CHILD_LOG";

void corvane::test::assignForGood(const char *name, const char *value) {
  static auto &guards = *new std::list<EnvGuard>;
  guards.emplace_back(name, value);
}

static void runAndExit(const std::function<void(const std::string &)> &body) {
  const char *const given = std::getenv(logVariable);
  const std::string log = given ? given : "";
  assignForGood(variable::dumpLog, log.c_str());
  body(log);
  std::exit(testing::Test::HasFailure() ? EXIT_FAILURE : EXIT_SUCCESS);
}

static std::map<std::string, std::string>
filesIn(const std::filesystem::path &folder) {
  std::map<std::string, std::string> files;
  std::error_code ignored;
  for (const auto &entry :
       std::filesystem::recursive_directory_iterator(folder, ignored))
    if (entry.is_regular_file())
      files[entry.path().lexically_relative(folder).generic_string()] =
          readBytes(entry.path());
  return files;
}

// Runs the body in a child. In the child this function does not return.
static Ended runIn(const std::function<void(const std::string &)> &body) {
  Ended ended;
  const auto keep = [&ended](const std::string &text) {
    ended.errorText = text;
    return true;
  };
  EXPECT_EXIT(runAndExit(body), testing::ExitedWithCode(EXIT_SUCCESS),
              testing::Truly(keep));
  return ended;
}

Ended corvane::test::runToItsEnd(
    const std::function<void(const std::string &)> &body) {
  // Starts a new process instead of a copy of this one, whose log would have
  // what other tests have written.
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  if (std::getenv(logVariable))
    return runIn(body);

  TempFolder folder;
  const std::string log = folder.file("log.txt");
  EnvGuard logForChild(logVariable, log);
  Ended ended = runIn(body);
  ended.diagnosticLog = readBytes(log);
  ended.files = filesIn(folder.path());
  return ended;
}
