// What the pages of a report are called, in the file system and in links.

#pragma once

#include "results/ConfigResults.h"

#include <cstddef>
#include <set>
#include <string>

namespace corvane {

/// Gives the configurations of one report their names, one after the other.
class PageNames {
public:
  /// What the names of the pages of \p config begin with: "k_1024___64__".
  ///
  /// A name is letters, digits, "_", "$" and "-", short enough for a file with
  /// any of our endings, and never given twice; so it needs no escape on a page
  /// and leads nowhere else. The kernel and the sizes stand in it as they are,
  /// unless no compiler and no launch made them, or nothing has room for them:
  /// then what would do harm is replaced, and a number makes the name unique.
  std::string nameFor(const ConfigResults &config);

private:
  std::size_t count = 0;       ///< configurations so far
  std::set<std::string> taken; ///< names as the file system tells them apart
};

} // namespace corvane
