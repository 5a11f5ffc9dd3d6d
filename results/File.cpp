// Opens files without a buffer of the C library's.

#include "results/File.h"

using namespace corvane;

FileHandle corvane::openFile(const std::string &path, const char *mode) {
  FileHandle file(std::fopen(path.c_str(), mode));
  if (file)
    std::setvbuf(file.get(), nullptr, _IONBF, 0);
  return file;
}
