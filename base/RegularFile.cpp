// Reads piece by piece, for a file may grow or shrink while it is read.

#include "base/RegularFile.h"

#include "base/Platform.h"

#include "llvm/Support/Errc.h"

#include <cstddef>
#include <cstdio>

using namespace corvane;
using llvm::createStringError;
using llvm::errc;

llvm::Expected<std::string> corvane::readRegularFile(const std::string &path,
                                                     std::uint64_t limit) {
  const platform::OpenedFile opened =
      platform::openRegularFile(path, platform::FileUse::Read);
  if (opened.refused)
    return createStringError(errc::invalid_argument, "it is no regular file");
  if (!opened.file)
    return createStringError(errc::no_such_file_or_directory,
                             "it cannot be opened");
  std::string text;
  std::string piece(std::size_t{1} << 16, '\0');
  while (const std::size_t count =
             std::fread(piece.data(), 1, piece.size(), opened.file.get())) {
    if (text.size() + count > limit)
      return createStringError(errc::file_too_large, "it is larger than %u MiB",
                               static_cast<unsigned>(limit >> 20));
    text.append(piece, 0, count);
  }
  if (std::ferror(opened.file.get()))
    return createStringError(errc::io_error, "it cannot be read");
  return text;
}
