// Writes a temporary file beside the one to replace, and renames it.

#include "tools/corvane/OutputText.h"

#include "llvm/ADT/SmallString.h"
#include "llvm/Support/FileSystem.h"

using namespace corvane;
namespace fs = llvm::sys::fs;

static std::error_code finish(llvm::raw_fd_ostream &out) {
  out.flush();
  const std::error_code error = out.error();
  out.clear_error(); // an error that is left would end this process
  return error;
}

llvm::Error
corvane::replaceFile(const std::string &file,
                     llvm::function_ref<void(llvm::raw_ostream &)> write) {
  if (file == "-") {
    write(llvm::outs());
    return llvm::errorCodeToError(finish(llvm::outs()));
  }
  int descriptor = -1;
  llvm::SmallString<256> temporary;
  if (const std::error_code error =
          fs::createUniqueFile(file + "-%%%%%%%%.tmp", descriptor, temporary))
    return llvm::errorCodeToError(error);

  llvm::raw_fd_ostream out(descriptor, true);
  write(out);
  std::error_code error = finish(out);
  out.close();
  if (!error)
    error = finish(out);
  if (!error)
    error = fs::rename(temporary, file);
  if (error)
    fs::remove(temporary);
  return llvm::errorCodeToError(error);
}

llvm::Error corvane::replaceFile(const std::string &file,
                                 llvm::StringRef text) {
  return replaceFile(file, [&](llvm::raw_ostream &out) { out << text; });
}
