// Runs another program and returns all that it writes.

#pragma once

#include <map>
#include <string>
#include <vector>

namespace corvane::test {

/// Variables that a child gets beside or instead of those of this process.
using Environment = std::map<std::string, std::string>;

struct ProgramRun {
  int exitCode = -1; ///< minus the signal's number if a signal ended it
  std::string out;
  std::string err;
};

/// Runs a program, looked up in the search path if \p command has no slash, and
/// waits for it. It does not inherit the variables that configure the agent or
/// the OpenCL loader's layers. A program that cannot be run fails the test.
ProgramRun runProgram(const std::vector<std::string> &command,
                      const Environment &changes = {});

/// The words or variables of a program as its start takes them: a pointer to
/// each text and a null pointer. Valid as long as \p texts is not changed.
std::vector<char *> pointersTo(std::vector<std::string> &texts);

/// The lines of a text, without their line feeds.
std::vector<std::string> linesOf(const std::string &text);

} // namespace corvane::test
