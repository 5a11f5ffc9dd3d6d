// A current directory that no path of an input leads out of.

#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace corvane::fuzz {

/// Makes a chain of `depth` folders and goes to its end. A path with fewer ".."
/// stays inside the chain. One a process.
class DeepFolder {
public:
  DeepFolder();

  static constexpr std::size_t depth = 72;

  /// The most bytes that contained() takes.
  static constexpr std::size_t mostBytes = 3 * depth - 1;

  /// \p path, made relative to the end of the chain if it is absolute or empty:
  /// with a file's name after it, an empty path becomes absolute.
  std::string contained(std::string_view path) const;

  /// Removes everything in the folders except the chain.
  void empty() const;

private:
  std::filesystem::path top;
  std::filesystem::path end;
};

} // namespace corvane::fuzz
