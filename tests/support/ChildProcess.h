// Runs a part of a test in a child process, to see what happens at its end.

#pragma once

#include <functional>
#include <map>
#include <string>

namespace corvane::test {

/// What a child process has written.
struct Ended {
  std::string diagnosticLog; ///< the text of the file, "" if there is none
  std::string errorText;     ///< all that it wrote on standard error
  /// Every file in the folder of the diagnostic log, by its path from there.
  std::map<std::string, std::string> files;
};

/// Runs \p body in a child process, which then exits as if main had returned. A
/// failed expectation in the child fails the test here.
///
/// The body gets the path of a file that does not exist yet, alone in a folder;
/// CORVANE_DUMP_LOG names it when the body starts. A FakeRuntime of the body
/// takes that away while it lives, so hand the path to the LoadedAgent once
/// more.
///
/// The child runs the test from its beginning up to this call. So call this
/// once in a test, before anything else.
Ended runToItsEnd(const std::function<void(const std::string &log)> &body);

/// Defines a variable until the process ends; null removes it. For child
/// processes.
void assignForGood(const char *name, const char *value);

} // namespace corvane::test
