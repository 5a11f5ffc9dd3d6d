// A current directory from which no path that an input makes up leads out.

#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace corvane::fuzz {

/// Makes a chain of folders and goes to its end: the first of them is so far up
/// that a path with fewer than `depth` times ".." stays below it. One a
/// process.
class DeepFolder {
public:
  DeepFolder();

  static constexpr std::size_t depth = 72;

  /// The most bytes that contained() takes.
  static constexpr std::size_t mostBytes = 3 * depth - 1;

  /// \p path, with absolute paths made relative to the end of the chain. The
  /// empty one as well: it becomes absolute when a file is looked for in it.
  std::string contained(std::string_view path) const;

  /// Removes all that is in the folders but the chain.
  void empty() const;

private:
  std::filesystem::path top;
  std::filesystem::path end;
};

} // namespace corvane::fuzz
