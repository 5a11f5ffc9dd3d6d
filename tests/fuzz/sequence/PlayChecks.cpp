// What must be true after each move, and when all is over.

#include "agent/Environment.h"
#include "tests/fuzz/sequence/Play.h"

#include <algorithm>
#include <set>
#include <sstream>

using namespace corvane;
using namespace corvane::fuzz;

// What must be true after each move: the agent has released what it needed for
// the call.
void Play::checkAlways() {
  for (const std::string &misuse : runtime.misuses())
    fail("no object is used after its end: " + misuse);
  const std::size_t living = runtime.alive("event").size();
  const std::size_t own = events.size() + userEvents.size();
  // The events of a launch are kept until its runs are over and the agent was
  // called back.
  const bool mayLive = !runtime.waiting().empty() || callbacksMayBeHeld;
  check(failing || living == own || (mayLive && living > own),
        "only the application's events are alive when all runs are over");
  check(failing || runtime.alive("program").size() == programs.size(),
        "only the application's programs are alive");
  check(failing || runtime.alive("buffer").size() == buffers.size(),
        "only the application's buffers are alive");
}

void Play::checkContents() {
  if (failing || contentsUnknown)
    return;
  for (const HeldBuffer &buffer : buffers)
    for (const unsigned char value : runtime.bytes(buffer.handle))
      check(value == buffer.value,
            "a buffer holds what the application's kernels wrote");
}

void Play::checkRows() {
  if (failing || rowsUnknown || !tuning)
    return;
  const std::string log = test::readBytes(folder.file(".auto.csv"));
  const auto lines = std::count(log.begin(), log.end(), '\n');
  check(static_cast<std::size_t>(lines) == 1 + watchedRuns,
        "each run has a row");
}

void Play::checkEnd() {
  if (failing)
    return;
  if (!kernelsLost)
    check(runtime.alive("kernel").empty(), "all variants are released");
  if (tuning && hasState && std::getenv(variable::installLocation) &&
      std::getenv(variable::autotune))
    check(!test::readBytes(folder.file("main.html")).empty(),
          "the report is written");
}

static bool startsWith(const std::string &text, const std::string &start) {
  return text.compare(0, start.size(), start) == 0;
}

// Argument 0 counts as set before it is set, with a size of 0: the runtime
// refuses its replay although nothing was made to fail.
static constexpr const char *emptyReplay =
    "QrlAgent:: 721: CL Error: CL_INVALID_ARG_SIZE";

// Checks that the agent has written known lines only, and reports of failed
// calls only if calls were made to fail.
void Play::checkErrorText() {
  const std::set<std::string> ours = {"227", "234", "281",  "721",
                                      "741", "745", "1123", "1211"};
  std::istringstream text(errors.take());
  for (std::string line; std::getline(text, line);) {
    if (startsWith(line, "QrlAgent:: ")) {
      const std::string tag = line.substr(11, line.find(':', 11) - 11);
      if (!failing && ours.count(tag) != 0 && line != emptyReplay)
        fail("our own calls work: " + line);
    } else if (!startsWith(line, "CV: ") &&
               !startsWith(line, "Corvane's kernel cannot be launch ") &&
               line != "ensureOutputDir() error") {
      fail("the error stream has known lines only: " + line);
    }
  }
}
