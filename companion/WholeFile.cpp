// Reads and writes by the calls of base/, and renames.

#include "companion/WholeFile.h"

#include "base/Platform.h"
#include "base/RegularFile.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <system_error>

using namespace corvane;
namespace fs = std::filesystem;

std::optional<std::string> corvane::readWholeFile(const std::string &path,
                                                  std::size_t most) {
  llvm::Expected<std::string> bytes = readRegularFile(path, most);
  if (bytes)
    return std::move(*bytes);
  llvm::consumeError(bytes.takeError());
  return std::nullopt;
}

// No other file has it: not of this process, and hardly of another one.
static std::string temporaryName(const std::string &path) {
  static std::atomic<unsigned> lastNumber{0};
  const auto now = std::chrono::system_clock::now().time_since_epoch().count();
  return path + "." + std::to_string(now) + "-" +
         std::to_string(reinterpret_cast<std::uintptr_t>(&path)) + "-" +
         std::to_string(++lastNumber) + ".tmp";
}

bool corvane::replaceWholeFile(const std::string &path, llvm::StringRef bytes) {
  const std::string temporary = temporaryName(path);
  platform::OpenedFile opened =
      platform::openRegularFile(temporary, platform::FileUse::Replace);
  if (!opened.file)
    return false;
  bool isWhole = platform::writeBytes(opened.file.get(), bytes.data(),
                                      bytes.size()) == bytes.size();
  isWhole &= std::fclose(opened.file.release()) == 0;
  std::error_code error;
  if (isWhole)
    fs::rename(temporary, path, error);
  if (isWhole && !error)
    return true;
  std::error_code ignored;
  fs::remove(temporary, ignored);
  return false;
}

std::string corvane::pathInFolder(const std::string &folder,
                                  const std::string &name) {
  return folder + platform::directorySeparator + name;
}
