// A folder for the files of a benchmark.

#pragma once

#include <filesystem>
#include <string>

#include <unistd.h>

namespace corvane::bench {

/// A folder in memory, if the system has one.
inline std::filesystem::path memoryFolder() {
  const std::filesystem::path memory = "/dev/shm";
  return std::filesystem::is_directory(memory)
             ? memory
             : std::filesystem::temp_directory_path();
}

/// A new folder of this process, removed with all it holds.
class Folder {
public:
  explicit Folder(const std::filesystem::path &parent)
      : path(parent / ("corvane-bench-" + std::to_string(getpid()))) {
    std::filesystem::create_directories(path);
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
  Folder(const Folder &) = delete;
  Folder &operator=(const Folder &) = delete;

  std::string text() const { return path.string(); }
  std::string file(const char *name) const { return (path / name).string(); }

private:
  std::filesystem::path path;
};

} // namespace corvane::bench
