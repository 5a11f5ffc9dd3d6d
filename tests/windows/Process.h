// Runs one of our programs and returns what it wrote.

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

/// Runs \p program, which is in the running one's folder, with \p arguments,
/// our environment and more variables. A program that cannot be started fails
/// the test.
Finished runProgram(const std::string &program, const std::string &arguments,
                    const Variables &variables);

} // namespace corvane::test
