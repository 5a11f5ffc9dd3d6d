// Tests of what corvane tune shows on a terminal while the program runs.

#include "tests/command/Corvane.h"

#include <csignal>
#include <cstdlib>

#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {
class Progress : public CorvaneTest {
protected:
  Progress() {
    std::vector<RunLine> lines = fasterVariant();
    DecisionLine decision;
    decision.configuration = 3;
    decision.winner = "g0S4";
    decision.versions = {{"", 100.0, 7, std::nullopt, false},
                         {"g0S4", 50.0, 7, std::nullopt, false}};
    lines.emplace_back(decision);
    recordFile("r", lines);
    define("TERM", "xterm");
  }

  /// Starts corvane tune on a terminal of its own, with an application that
  /// leaves the record and waits for a signal.
  void start(std::vector<std::string> options) {
    std::vector<std::string> words = {CORVANE_FILE, "tune", "--output",
                                      output()};
    words.insert(words.end(), options.begin(), options.end());
    for (const std::string &word : std::vector<std::string>{
             "--", APPLICATION_FILE, "record", "a", folder.file("r"), "await"})
      words.push_back(word);
    struct winsize size = {};
    size.ws_row = 24;
    size.ws_col = 160;
    child = ::forkpty(&terminal, nullptr, nullptr, &size);
    if (child != 0)
      return;
    std::vector<char *> arguments;
    for (std::string &word : words)
      arguments.push_back(word.data());
    arguments.push_back(nullptr);
    ::execv(arguments[0], arguments.data());
    ::_exit(99);
  }

  /// Reads what is on the terminal until \p text was written; false if that
  /// never happens.
  bool awaitText(const std::string &text) {
    char bytes[4096];
    while (seen.find(text) == std::string::npos) {
      const ssize_t count = ::read(terminal, bytes, sizeof bytes);
      if (count <= 0)
        return false;
      seen.append(bytes, static_cast<std::size_t>(count));
    }
    return true;
  }

  /// Ends the application; returns all that was on the terminal.
  std::string ended() {
    ::kill(child, SIGTERM);
    while (awaitText("there is no such text")) {
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 7);
    ::close(terminal);
    return seen;
  }

private:
  pid_t child = -1;
  int terminal = -1;
  std::string seen;
};
} // namespace

TEST_F(Progress, TellsHowFarTuningHasCome) {
  start({"--seconds", "60"});
  ASSERT_TRUE(awaitText("s left"));
  EXPECT_THAT(
      ended(),
      HasSubstr("corvane: 1 of 1 configuration decided, 14 timed runs, best "
                "so far 2.00x (scale), about 0.0 s added, 60 s left"));
}

TEST_F(Progress, IsWipedBeforeTheTable) {
  start({});
  ASSERT_TRUE(awaitText("s added"));
  const std::string text = ended();
  const std::size_t wiped = text.rfind("\033[r\033[24;1H\033[K");
  ASSERT_NE(wiped, std::string::npos);
  EXPECT_GT(wiped, text.rfind("s added"));
  EXPECT_LT(wiped, text.find("kernel  sizes"));
}

TEST_F(Progress, LeavesTheProgramsOutputWhole) {
  start({});
  ASSERT_TRUE(awaitText("s added"));
  // Every piece of the line puts the cursor back to where the program writes.
  std::string text = ended();
  EXPECT_THAT(text, HasSubstr("ready\r\n"));
  std::size_t pieces = 0;
  for (std::size_t at = 0; (at = text.find("\0337\033[24;1H\033[Kcorvane: ",
                                           at)) != std::string::npos;
       ++at, ++pieces)
    EXPECT_EQ(text.find('\n', at), text.find('\n', text.find("\0338", at)));
  EXPECT_GT(pieces, 0U);
}

TEST_F(Progress, ShowsNothingIfItIsToBeQuiet) {
  start({"--quiet"});
  ASSERT_TRUE(awaitText("ready"));
  EXPECT_THAT(ended(),
              AllOf(HasSubstr("kernel  sizes"), Not(HasSubstr("\033"))));
}

TEST_F(Progress, ShowsNothingOnATerminalWithoutEscapes) {
  define("TERM", "dumb");
  start({});
  ASSERT_TRUE(awaitText("ready"));
  EXPECT_THAT(ended(), Not(HasSubstr("\033")));
}
