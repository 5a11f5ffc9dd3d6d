// A folder of this process that is emptied for every input.

#pragma once

#include "tests/support/TempFolder.h"

#include <filesystem>

namespace corvane::fuzz {

/// Kept until the process ends. A search that is killed does not remove it.
class OutputFolder {
public:
  OutputFolder() = default;

  std::filesystem::path path() const { return folder.path(); }
  std::string file(const std::string &name) const { return folder.file(name); }

  void empty() const {
    for (const auto &entry : std::filesystem::directory_iterator(folder.path()))
      std::filesystem::remove_all(entry.path());
  }

private:
  test::TempFolder folder;
};

} // namespace corvane::fuzz
