// Reads a file line by line through one large buffer.

#pragma once

#include "results/File.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// The lines of a file of any bytes. A file that cannot be opened or read has
/// no (more) lines.
class LineReader {
public:
  explicit LineReader(const std::string &path);

  /// The next line without its line feed, which the last line may lack; none at
  /// the end. The text lasts until the next call.
  std::optional<std::string_view> next();

private:
  bool fill();

  platform::FileHandle file;
  std::vector<char> buffer; ///< grows only for a line that does not fit
  std::size_t begin = 0;    ///< the bytes read but not yet handed out ...
  std::size_t end = 0;      ///< ... stop here
};

} // namespace corvane
