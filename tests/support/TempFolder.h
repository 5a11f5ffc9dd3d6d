// A new and empty folder for one test, and files as bytes.

#pragma once

#include <filesystem>
#include <fstream>
#include <ios>
#include <iterator>
#include <random>
#include <string>
#include <system_error>

namespace corvane::test {

/// All bytes of a file; the empty text when it cannot be read.
inline std::string readBytes(const std::filesystem::path &path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

/// Makes the file, or replaces what it holds. Returns whether that worked.
inline bool writeBytes(const std::filesystem::path &path,
                       const std::string &bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  return !out.fail();
}

/// A folder in memory, if the system has one: for tests that empty a file
/// thousands of times, which on a disk may have to wait each time.
inline std::filesystem::path folderInMemory() {
  const std::filesystem::path shared = "/dev/shm";
  std::error_code ignored;
  return std::filesystem::is_directory(shared, ignored)
             ? shared
             : std::filesystem::temp_directory_path();
}

/// A folder that no other test has, removed with all it holds.
class TempFolder {
public:
  explicit TempFolder(const std::filesystem::path &parent =
                          std::filesystem::temp_directory_path()) {
    std::random_device random;
    do
      folder = parent / ("corvane-test-" + std::to_string(random()));
    while (!std::filesystem::create_directory(folder));
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
  }
  TempFolder(const TempFolder &) = delete;
  TempFolder &operator=(const TempFolder &) = delete;

  std::filesystem::path path() const { return folder; }

  /// The folder as a directory is named in the environment.
  std::string text() const { return folder.string(); }

  /// The path of a file in the folder, whether it exists or not. \p name may
  /// have folders in it, separated by "/".
  std::string file(const std::string &name) const {
    return (folder / name).string();
  }

  bool has(const std::string &name) const {
    return std::filesystem::exists(folder / name);
  }
  std::string read(const std::string &name) const {
    return readBytes(folder / name);
  }
  bool write(const std::string &name, const std::string &bytes) const {
    return writeBytes(folder / name, bytes);
  }

private:
  std::filesystem::path folder;
};

} // namespace corvane::test
