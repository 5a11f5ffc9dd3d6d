// Whether programs get generated variants, and where those come from.

#pragma once

#include <string>

namespace corvane::layer {

struct CompanionSettings {
  std::string generator; ///< the program that makes variants; empty: none
  /// Where the variants of programs lie, one file each; with a generator what
  /// it makes is kept there. Absolute; may be empty.
  std::string folder;

  bool areWanted() const { return !generator.empty() || !folder.empty(); }
};

/// What the environment asks for. No generated variant may run that was not
/// measured, so nothing is wanted unless the agent tunes or applies a profile.
/// Call it first before the agent is loaded, which may move a variable; what it
/// finds then holds for the process.
const CompanionSettings &companionSettings();

/// Whether there may be companions in this process.
inline bool companionsAreWanted() { return companionSettings().areWanted(); }

} // namespace corvane::layer
