// How the pages of a report are called, and the pages that lead to the others.
//
// All texts are part of the interface, byte for byte.

#pragma once

#include "results/LaunchKey.h"

#include "llvm/Support/raw_ostream.h"

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace corvane {

/// The configuration as the pages show it to people: "k [ x:1024/64 ] ".
std::string configTitle(const LaunchKey &key);

/// Gives the configurations of one report their names, one after the other.
class PageNames {
public:
  /// What the names of the pages of \p key begin with: "k_1024___64__".
  ///
  /// A name is letters, digits, "_", "$" and "-", short enough for a file with
  /// any of our endings, and never given twice; so it needs no escape on a page
  /// and leads to no other file. The kernel and the sizes are in it unchanged,
  /// unless no compiler and no launch made them, or they are too long for a
  /// file name: then what would do harm is replaced, and a number makes the
  /// name unique.
  std::string nameFor(const LaunchKey &key);

private:
  std::size_t count = 0;       ///< configurations so far
  std::set<std::string> taken; ///< names as the file system tells them apart
};

/// One line of the list of configurations.
struct IndexEntry {
  std::string title;
  std::string page; ///< file name, as PageNames made it
};

/// The table page above the graph page, both called after \p base.
void writeFramePage(llvm::raw_ostream &out, const std::string &base);

/// The list of all configurations.
void writeIndexPage(llvm::raw_ostream &out,
                    const std::vector<IndexEntry> &entries);

/// The index beside the first configuration.
void writeMainPage(llvm::raw_ostream &out,
                   const std::vector<IndexEntry> &entries);

} // namespace corvane
