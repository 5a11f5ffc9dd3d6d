// What a configuration is called on the pages, in files and in links.

#pragma once

#include "results/LaunchKey.h"

#include <cstddef>
#include <set>
#include <string>

namespace corvane {

/// What a person calls a configuration: "k [ x:1024/64 ] ".
std::string configTitle(const LaunchKey &key);

/// Gives the configurations of one report their names, one after the other.
class PageNames {
public:
  /// What the names of the pages of \p key begin with: "k_1024___64__".
  ///
  /// A name is letters, digits, "_", "$" and "-", short enough for a file with
  /// any of our endings, and never given twice; so it needs no escape on a page
  /// and leads nowhere else. The kernel and the sizes stand in it as they are,
  /// unless no compiler and no launch made them, or nothing has room for them:
  /// then what would do harm is replaced, and a number makes the name unique.
  std::string nameFor(const LaunchKey &key);

private:
  std::size_t count = 0;       ///< configurations so far
  std::set<std::string> taken; ///< names as the file system tells them apart
};

} // namespace corvane
