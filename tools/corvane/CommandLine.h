// The commands that corvane has, as its command line names them.

#pragma once

#include "tools/corvane/Command.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <map>

namespace corvane {

/// What follows the first "--" on the command line.
using WordsAfter = std::vector<std::string>;

/// What a command does, and whether it takes words after "--".
struct Action {
  enum Words { None, Optional, Program };
  Words words = None;
  std::function<int(const WordsAfter &)> run;
};

using Actions = std::map<const CLI::App *, Action>;

/// Each adds commands to \p commands, and what they do to \p actions.
void addResultCommands(CLI::App &commands, Actions &actions);
void addDiagnosisCommands(CLI::App &commands, Actions &actions);

/// Makes a command's help say that its arguments end with \p words.
void endUsageWith(CLI::App &command, std::string words);

} // namespace corvane
