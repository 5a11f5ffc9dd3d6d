// The environment variables that configure the agent, by name and in words.

#pragma once

namespace corvane {

/// The names. When each is looked up stands in its words below.
namespace variable {
#define SETTING(identifier, name, meaning, withoutIt, lookedUp)                \
  inline constexpr const char *identifier = name;
#include "base/Settings.def"
} // namespace variable

/// One variable in words, for people. The texts are Markdown.
struct Setting {
  const char *name;
  const char *meaning;   ///< one or more sentences
  const char *withoutIt; ///< what holds while it is not defined
  const char *lookedUp;  ///< when and by whom
};

/// All of them, the most useful first.
inline constexpr Setting settings[] = {
#define SETTING(identifier, name, meaning, withoutIt, lookedUp)                \
  {name, meaning, withoutIt, lookedUp},
#include "base/Settings.def"
};

} // namespace corvane
