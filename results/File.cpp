// Reports what the platform refuses to open.

#include "results/File.h"

#include "agent/RefusedFiles.h"

#include <utility>

using namespace corvane;

platform::FileHandle corvane::openFile(const std::string &path,
                                       platform::FileUse use) {
  platform::OpenedFile opened = platform::openRegularFile(path, use);
  if (opened.refused)
    reportRefusedFile(path);
  return std::move(opened.file);
}
