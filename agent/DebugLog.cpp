// Keeps the diagnostic log in memory and appends it to its file at exit.

#include "agent/DebugLog.h"

#include "agent/ErrorStream.h"
#include "base/ForkedChild.h"
#include "base/Platform.h"

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <new>
#include <utility>

using namespace corvane;

/// One text that was written. Its bytes follow it in memory.
struct debug::string_ostream::Piece {
  Piece *earlier;
  std::size_t size;

  char *text() { return reinterpret_cast<char *>(this + 1); }
};

// Without memory the text is lost, and the launch that it is about goes on.
void debug::string_ostream::write_impl(const char *data, std::size_t size) {
  void *memory = std::malloc(sizeof(Piece) + size);
  if (!memory)
    return;
  auto *piece = new (memory) Piece{latest.load(), size};
  std::memcpy(piece->text(), data, size);
  while (!latest.compare_exchange_weak(piece->earlier, piece)) {
  }
}

// All that was written so far, in the order in which it was.
std::string debug::string_ostream::takeText() {
  Piece *list = latest.exchange(nullptr);
  std::size_t size = 0;
  for (const Piece *piece = list; piece; piece = piece->earlier)
    size += piece->size;
  std::string all(size, '\0');
  while (list) {
    size -= list->size;
    std::memcpy(all.data() + size, list->text(), list->size);
    std::free(std::exchange(list, list->earlier));
  }
  return all;
}

static platform::FileHandle openDumpLog() {
  std::string path;
  if (const EnvironmentLook look; look && dumpLogPath())
    path = dumpLogPath();
  if (path.empty())
    return nullptr;
  platform::OpenedFile opened =
      platform::openRegularFile(path, platform::FileUse::AddOnly);
  if (opened.refused)
    reportRefusedFile(path);
  return std::move(opened.file);
}

// Writes the length to the C++ library's own stream, where it is expected. The
// application may have asked that stream to throw, and may have left it in any
// state, with a buffer of its own that throws anything.
static void tellLength(std::size_t length) {
  platform::makeErrorStreamBinary();
  platform::useStandardError([length] {
    try {
      std::cerr << std::to_string(length) + "\n";
    } catch (...) {
      // The length is lost, and the process goes on to end.
    }
  });
}

void debug::string_ostream::dump() {
  const platform::FileHandle file = openDumpLog();
  if (!file)
    return;
  const std::string log = takeText();
  tellLength(log.size());
  (void)platform::writeBytes(file.get(), log.data(), log.size());
}

namespace {
/// Dumps the log when the process exits or the library is closed. The stream
/// itself stays: a thread that is still at work may write to it.
class LogAtExit {
public:
  LogAtExit() : stream(*new (storage) debug::string_ostream) {}
  ~LogAtExit() {
    if (corvane::inForkedChild())
      return;
    try {
      stream.dump();
    } catch (const std::bad_alloc &) {
      // The log is lost, and the process ends as it would without it.
    }
  }
  LogAtExit(const LogAtExit &) = delete;
  LogAtExit &operator=(const LogAtExit &) = delete;

  debug::string_ostream &stream;

private:
  alignas(debug::string_ostream) unsigned char storage[sizeof(
      debug::string_ostream)];
};
} // namespace

debug::string_ostream &detail::keptLog() {
  static const LogAtExit log;
  return log.stream;
}

llvm::raw_ostream *corvane::lookUpDebugLog() {
  const EnvironmentLook look;
  return look && dumpLogPath() ? &detail::keptLog() : nullptr;
}

llvm::raw_ostream &corvane::debugLog() {
  llvm::raw_ostream *log = lookUpDebugLog();
  return log ? *log : llvm::nulls();
}
