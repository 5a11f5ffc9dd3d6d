// Programs that the commands start, and the environment they get.

#pragma once

#include "tools/corvane/Command.h"

#include <string>
#include <vector>

namespace corvane {

/// How a program ended, or why it did not start.
struct ProgramEnd {
  bool started = false;
  int exitCode = CommandFailed;
  std::string whyNot; ///< when it did not start, in words
};

/// Runs \p program on this process's own streams and waits for its end. Signals
/// that another process sends to this one are sent on. Those of the terminal
/// reach the program anyway, and this process lives on.
ProgramEnd runAndWait(const Program &program);

/// Replaces this process by \p program; returns only if it could not start.
/// Where the system does not have that, it is runAndWait.
ProgramEnd become(const Program &program);

/// The full path of the program that runs here.
std::string ownProgram();

/// The arguments of main without the first one, as UTF-8.
std::vector<std::string> argumentsOf(int count, char **values);

/// Defines an environment variable for this process and those it starts.
void setVariable(const std::string &name, const std::string &value);
void removeVariable(const std::string &name);

/// The names of all variables that are defined.
std::vector<std::string> variableNames();

/// What an OpenCL loader does for layers.
enum class LoaderAnswer {
  TakesLayers,
  TakesNone,
  IsMissing,
  HasNoPlatform, ///< and so nothing to put a layer over
};

/// With this as its first argument and a layer as the second, corvane does
/// nothing but askLoader, and the answer is its exit code.
inline constexpr const char *probeArgument = "--ask-loader";

/// Loads the OpenCL loader into this process and has it start, with the
/// variables as they are.
LoaderAnswer askLoader(const std::string &layer);

} // namespace corvane
