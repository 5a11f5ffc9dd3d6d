// Runs one of our programs to its end.

#pragma once

#include <string>
#include <utility>
#include <vector>

namespace corvane::test {

/// How a program ended, and all that it wrote, as bytes.
struct Finished {
  unsigned long exitCode = ~0UL;
  std::string out;
  std::string errors;
};

using Variables = std::vector<std::pair<std::string, std::string>>;

/// Runs \p program, which lies beside the running one, with \p arguments and
/// with more environment variables than ours. A program that cannot be started
/// fails the test.
Finished runProgram(const std::string &program, const std::string &arguments,
                    const Variables &variables);

} // namespace corvane::test
