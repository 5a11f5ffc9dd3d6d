// Files that are read and replaced as a whole.

#pragma once

#include "llvm/ADT/StringRef.h"

#include <cstddef>
#include <optional>
#include <string>

namespace corvane {

/// The bytes of a regular file; none if \p path names anything else, if it
/// cannot be read, or if it has more than \p most bytes. Never waits.
std::optional<std::string> readWholeFile(const std::string &path,
                                         std::size_t most);

/// Gives \p path these bytes in one step: whoever reads it meanwhile, in this
/// process or another, gets the old file or the new one, whole. False if that
/// failed; then the old file is as it was. Its folder must be there.
bool replaceWholeFile(const std::string &path, llvm::StringRef bytes);

/// The path of a file in a folder.
std::string pathInFolder(const std::string &folder, const std::string &name);

} // namespace corvane
