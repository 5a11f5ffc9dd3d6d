// An open file that closes itself.

#pragma once

#include <cstdio>
#include <memory>
#include <string>

namespace corvane {

struct CloseFile {
  void operator()(std::FILE *file) const { std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, CloseFile>;

/// Opens \p path as std::fopen does; null when it cannot be opened. There is no
/// buffer in between: each std::fwrite is one write to the system.
FileHandle openFile(const std::string &path, const char *mode);

} // namespace corvane
