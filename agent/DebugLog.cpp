// Keeps the diagnostic log in memory and appends it to its file at exit.

#include "agent/DebugLog.h"

#include "agent/platform/Platform.h"
#include "base/ForkedChild.h"

#include <fstream>
#include <iostream>
#include <new>
#include <thread>
#include <utility>

using namespace corvane;

void debug::string_ostream::write_impl(const char *data, std::size_t size) {
  const std::lock_guard<std::mutex> guard(lock);
  try {
    text.append(data, size);
  } catch (const std::bad_alloc &) {
    // A launch is worth more than what there is to say about it.
  }
}

// Whoever holds the lock is only adding text, unless the end of the process has
// stopped it in the middle; so this waits a moment and then goes on.
std::string debug::string_ostream::takeText() {
  std::unique_lock<std::mutex> guard(lock, std::try_to_lock);
  for (int tries = 0; !guard.owns_lock() && tries < 1000; ++tries) {
    std::this_thread::yield();
    (void)guard.try_lock();
  }
  return std::move(text);
}

static std::ofstream openDumpLog() {
  const EnvironmentLook look;
  const char *path = dumpLogPath();
  if (!path)
    return {};
  return std::ofstream(path, std::ios::out | std::ios::app | std::ios::binary);
}

void debug::string_ostream::dump() {
  std::ofstream file = openDumpLog();
  if (!file.is_open())
    return;
  const std::string log = takeText();
  platform::makeErrorStreamBinary();
  std::cerr << std::to_string(log.size()) + "\n";
  file.write(log.data(), static_cast<std::streamsize>(log.size()));
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
      // Nor does the application's way out stop here.
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

static llvm::raw_fd_ostream &unbufferedStream() {
  alignas(llvm::raw_fd_ostream) static unsigned char
      storage[sizeof(llvm::raw_fd_ostream)];
  static llvm::raw_fd_ostream &stream = *new (storage) llvm::raw_fd_ostream(
      2, /*shouldClose=*/false, /*unbuffered=*/true);
  return stream;
}

void corvane::prepareErrorStream() { unbufferedStream(); }

// Each time, for the application may have gone back to text meanwhile.
llvm::raw_fd_ostream &corvane::errorStream() {
  platform::makeErrorStreamBinary();
  return unbufferedStream();
}

void corvane::writeError(llvm::StringRef line) {
  errorStream();
  // One of its own for each line: LLVM's streams keep their errors in fields
  // that two threads must not share.
  llvm::raw_fd_ostream stream(2, /*shouldClose=*/false, /*unbuffered=*/true);
  stream << line;
  stream.clear_error();
}

llvm::raw_ostream *corvane::lookUpDebugLog() {
  const EnvironmentLook look;
  return dumpLogPath() ? &detail::keptLog() : nullptr;
}

llvm::raw_ostream &corvane::debugLog() {
  llvm::raw_ostream *log = lookUpDebugLog();
  return log ? *log : llvm::nulls();
}
