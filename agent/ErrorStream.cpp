// Writes on standard error through the platform, and tells once of each refused
// file.

#include "agent/ErrorStream.h"

#include "base/Platform.h"

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <new>
#include <set>

using namespace corvane;

namespace {
/// A stream over the platform's writing.
class ErrorStream : public llvm::raw_ostream {
public:
  ErrorStream() : llvm::raw_ostream(/*unbuffered=*/true) {}

private:
  // Makes the stream binary each time, because the application may have changed
  // it.
  void write_impl(const char *bytes, std::size_t count) override {
    platform::makeErrorStreamBinary();
    platform::writeStandardError({bytes, count});
  }
  std::uint64_t current_pos() const override { return 0; }
};
} // namespace

llvm::raw_ostream &corvane::errorStream() {
  alignas(ErrorStream) static unsigned char storage[sizeof(ErrorStream)];
  static ErrorStream &stream = *new (storage) ErrorStream;
  return stream;
}

void corvane::prepareErrorStream() { errorStream(); }

void corvane::writeError(llvm::StringRef line) { errorStream() << line; }

std::string corvane::inOneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(),
      [](unsigned char c) { return c < 0x20 || c == 0x7f; }, '?');
  return text;
}

// Whether the path is refused for the first time. Otherwise each row would
// write the line again when its log has been replaced.
static bool isFirstTime(const std::string &path) {
  static std::mutex lock;
  // Never destroyed: a file may be refused while the process ends.
  static auto &reported = *new std::set<std::string>;
  // The lock is not waited for: a thread that no longer runs may hold it.
  const std::unique_lock<std::mutex> guard(lock, std::try_to_lock);
  return guard.owns_lock() && reported.insert(path).second;
}

void corvane::reportRefusedFile(const std::string &path) {
  if (isFirstTime(path))
    writeError("CV: " + path + " is not a regular file and is not used.\n");
}
