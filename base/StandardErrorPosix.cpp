// Writes on standard error without waiting for ever, on Linux and its
// relatives.

#include "base/Platform.h"
#include "base/WriteSignals.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdint>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace corvane;

using Clock = std::chrono::steady_clock;

static constexpr std::chrono::seconds longestWait{2};

namespace {
/// A stream as the file system tells it from others.
struct Identity {
  std::uint64_t device;
  std::uint64_t node;
  bool operator==(const Identity &other) const {
    return device == other.device && node == other.node;
  }
};
} // namespace

// A closed descriptor is like no other.
static constexpr Identity closed{~std::uint64_t{0}, ~std::uint64_t{0}};
// Descriptors of standard streams come first; so many are looked at.
static constexpr int firstOther = STDERR_FILENO + 1;
static constexpr int descriptorsTried = 1024;

namespace {
/// What standard error was at a load. Never changed afterwards, and never
/// freed: any thread may look at it at any time.
struct Remembered {
  Identity stream;
  /// If that was a file, the host may have redirected the stream for a time and
  /// may do so again: what it could put back.
  std::vector<Identity> kept;

  bool operator==(const Remembered &other) const {
    return stream == other.stream && kept == other.kept;
  }
};
} // namespace

static std::atomic<const Remembered *> remembered{nullptr};

static Identity identityOf(int descriptor) {
  struct stat status = {};
  if (fstat(descriptor, &status) != 0)
    return closed;
  return {status.st_dev, status.st_ino};
}

static bool isFile(int descriptor) {
  struct stat status = {};
  return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

static bool mayBeKeptStream(int descriptor) {
  struct stat status = {};
  if (fstat(descriptor, &status) != 0)
    return false;
  return S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode) ||
         isatty(descriptor) != 0 ||
         identityOf(descriptor) == identityOf(STDOUT_FILENO);
}

static std::vector<Identity> streamsKeptNow() {
  std::vector<Identity> kept;
  if (!isFile(STDERR_FILENO))
    return kept;
  for (int other = firstOther; other != descriptorsTried; ++other)
    if (mayBeKeptStream(other))
      kept.push_back(identityOf(other));
  return kept;
}

void platform::rememberStandardError() {
  const Remembered now{identityOf(STDERR_FILENO), streamsKeptNow()};
  const Remembered *before = remembered;
  if (!before || !(*before == now))
    remembered = new Remembered(now);
}

// Where a host keeps a stream that it puts back later.
static bool isKept(const Remembered &then) {
  for (int other = firstOther; other != descriptorsTried; ++other) {
    const Identity open = identityOf(other);
    if (open == closed)
      continue;
    if (open == then.stream || llvm::is_contained(then.kept, open))
      return true;
  }
  return false;
}

static bool isStandardError() {
  const Remembered *then = remembered;
  if (!then)
    return true;
  const Identity now = identityOf(STDERR_FILENO);
  if (now == closed || then->stream == closed)
    return false;
  return now == then->stream || isKept(*then);
}

static bool canBlock() {
  const int flags = fcntl(STDERR_FILENO, F_GETFL);
  return flags >= 0 && (flags & O_NONBLOCK) == 0;
}

// An error counts as room: the write that follows meets it.
static bool hasRoomWithin(std::chrono::milliseconds wait) {
  const Clock::time_point end = Clock::now() + wait;
  for (;;) {
    pollfd stream = {STDERR_FILENO, POLLOUT, 0};
    const int found = poll(&stream, 1, static_cast<int>(wait.count()));
    if (found > 0)
      return true;
    if (found == 0 || errno != EINTR)
      return false;
    wait = std::max(std::chrono::milliseconds(0),
                    std::chrono::duration_cast<std::chrono::milliseconds>(
                        end - Clock::now()));
  }
}

static bool hasRoom() {
  static std::atomic<bool> isStuck{false};
  const bool found =
      hasRoomWithin(isStuck ? std::chrono::milliseconds(0) : longestWait);
  isStuck = !found;
  return found;
}

void platform::useStandardError(llvm::function_ref<void()> write) {
  const WriteSignals onlyFail;
  if (isStandardError() && (!canBlock() || hasRoom()))
    write();
}

// Where there is room for anything, there is room for so many bytes at once.
static std::size_t pieceSize(std::size_t size) {
  return isFile(STDERR_FILENO) ? size : std::min<std::size_t>(size, PIPE_BUF);
}

static void writePieces(llvm::StringRef bytes) {
  bool isFirst = true; // there is room for that one
  while (!bytes.empty()) {
    if (!isFirst && canBlock() && !hasRoom())
      return;
    const ssize_t written =
        write(STDERR_FILENO, bytes.data(), pieceSize(bytes.size()));
    if (written < 0 && errno == EINTR)
      continue;
    if (written <= 0)
      return;
    bytes = bytes.drop_front(static_cast<std::size_t>(written));
    isFirst = false;
  }
}

void platform::writeStandardError(llvm::StringRef bytes) {
  useStandardError([bytes] { writePieces(bytes); });
}
