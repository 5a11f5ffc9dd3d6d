// A program with generated variants, and the list of them.

#pragma once

#include "llvm/ADT/StringRef.h"

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace corvane {

/// A variant, and where its text is in the program.
struct ListedVariant {
  std::string name;
  std::size_t begin = 0; ///< in bytes
  std::size_t size = 0;
};

/// A file that the program's source includes, as it was when the variants were
/// made: they have its contents in them.
struct IncludedFile {
  std::string hash; ///< SHA-256; no hash for a file that could not be read
  std::string path; ///< relative ones from the current folder
};

/// What the generator writes, and what is kept of it. The file is a program in
/// OpenCL C, to be built in place of its source; the list is in its first
/// lines, which docs/coarsening.md describes.
struct VariantsFile {
  std::vector<ListedVariant> variants; ///< by position; texts do not overlap
  std::vector<IncludedFile> included;
  std::string whyNone; ///< if there are no variants
  std::string program; ///< without the list; empty if there are no variants
};

/// Of what comes from outside nothing is believed: none for text that breaks
/// the format.
std::optional<VariantsFile> readVariants(llvm::StringRef bytes);

std::string variantsText(const VariantsFile &file);

/// Takes out the text of all variants but those with these names.
void keepVariants(VariantsFile &file, const std::set<std::string> &names);

/// Adds the variants of \p other that \p file does not have. False, and \p file
/// is as it was, if they were made of different sources.
bool addVariants(VariantsFile &file, VariantsFile other);

/// Whether all that it includes is as it was.
bool includesAreUnchanged(const VariantsFile &file);

/// The most bytes that such a file has; a longer one is not read.
inline constexpr std::size_t mostVariantsBytes = std::size_t{4} << 20;

/// The name of a program's file in a folder of such files. \p programHash is as
/// in run records.
std::string variantsFileName(llvm::StringRef programHash);

} // namespace corvane
