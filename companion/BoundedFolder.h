// A folder of small files that any number of processes share.

#pragma once

#include "llvm/ADT/StringRef.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace corvane {

/// Keeps what can be made again, by name. Files may vanish at any time: when
/// they are more than the limit allows, the oldest are removed. Failures mean
/// that nothing is found and nothing is kept. Any thread.
class BoundedFolder {
public:
  /// \p path is made when it is first written to; empty: nothing is kept.
  BoundedFolder(std::string path, std::uintmax_t mostBytes)
      : folder(std::move(path)), limit(mostBytes) {}

  /// The bytes of a file of at most \p most bytes. Whatever the process that
  /// wrote it was, its contents are to be checked.
  std::optional<std::string> find(const std::string &name,
                                  std::size_t most) const;

  /// Keeps \p bytes under a name that is fit for a file.
  void keep(const std::string &name, llvm::StringRef bytes) const;

private:
  void removeOldest() const;

  const std::string folder;
  const std::uintmax_t limit;
};

/// The folder \p name in this user's cache; empty if there is no such cache.
std::string corvaneCacheFolder(const std::string &name);

} // namespace corvane
