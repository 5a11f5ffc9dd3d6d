// Finds, keeps and removes files by name and age.

#include "companion/BoundedFolder.h"

#include "base/Platform.h"
#include "companion/WholeFile.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

using namespace corvane;
namespace fs = std::filesystem;

std::string corvane::corvaneCacheFolder(const std::string &name) {
  const std::string caches = platform::userCacheFolder();
  return caches.empty() ? caches
                        : pathInFolder(pathInFolder(caches, "corvane"), name);
}

std::optional<std::string> BoundedFolder::find(const std::string &name,
                                               std::size_t most) const {
  if (folder.empty())
    return std::nullopt;
  return readWholeFile(pathInFolder(folder, name), most);
}

// For this user alone: what is read here is built and run.
static bool makeFolder(const fs::path &path) {
  std::error_code error;
  if (fs::is_directory(path, error))
    return true;
  fs::create_directories(path, error);
  if (!error)
    fs::permissions(path, fs::perms::owner_all, error);
  return !error;
}

void BoundedFolder::keep(const std::string &name, llvm::StringRef bytes) const {
  if (folder.empty() || bytes.size() > limit / 4 || !makeFolder(folder))
    return;
  if (replaceWholeFile(pathInFolder(folder, name), bytes))
    removeOldest();
}

namespace {
struct KeptFile {
  fs::file_time_type written;
  std::uintmax_t size;
  fs::path path;
};
} // namespace

static std::vector<KeptFile> filesIn(const std::string &folder) {
  std::vector<KeptFile> files;
  std::error_code error;
  fs::directory_iterator entry(folder, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    std::error_code unknown;
    if (!fs::is_regular_file(entry->symlink_status(unknown)) || unknown)
      continue;
    const std::uintmax_t size = entry->file_size(unknown);
    const fs::file_time_type written = entry->last_write_time(unknown);
    if (!unknown)
      files.push_back({written, size, entry->path()});
  }
  return files;
}

// A quarter of the limit is made free at a time, so that this is seldom done.
void BoundedFolder::removeOldest() const {
  constexpr std::size_t mostFiles = 4096;
  std::vector<KeptFile> files = filesIn(folder);
  std::uintmax_t total = 0;
  for (const KeptFile &file : files)
    total += file.size;
  std::size_t left = files.size();
  if (total <= limit && left <= mostFiles)
    return;
  std::sort(files.begin(), files.end(),
            [](const auto &a, const auto &b) { return a.written < b.written; });
  for (const KeptFile &file : files) {
    if (total <= limit / 4 * 3 && left <= mostFiles / 4 * 3)
      return;
    std::error_code ignored;
    fs::remove(file.path, ignored);
    total -= file.size;
    --left;
  }
}
