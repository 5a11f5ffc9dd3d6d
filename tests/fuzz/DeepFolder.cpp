// Makes a chain of folders that are all called "d".

#include "tests/fuzz/DeepFolder.h"

#include "tests/support/TempFolder.h"

using namespace corvane::fuzz;

namespace fs = std::filesystem;

static constexpr const char *link = "d";

DeepFolder::DeepFolder() {
  static const test::TempFolder folder;
  top = end = folder.path();
  for (std::size_t i = 0; i != depth; ++i)
    end /= link;
  fs::create_directories(end);
  fs::current_path(end);
}

std::string DeepFolder::contained(std::string_view path) const {
  path = path.substr(0, mostBytes);
  if (path.empty() || path.front() == '/')
    return end.string() + std::string(path);
  return std::string(path);
}

// The name of an input's file may be that of the chain's folders.
void DeepFolder::empty() const {
  for (fs::path folder = top;; folder /= link) {
    for (const auto &entry : fs::directory_iterator(folder))
      if (folder == end || entry.path().filename() != link)
        fs::remove_all(entry.path());
    if (folder == end)
      return;
  }
}
