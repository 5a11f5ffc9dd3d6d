// Writes on standard error without waiting for ever, on Linux and its
// relatives.

#include "base/Platform.h"
#include "base/WriteSignals.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdint>

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

// A closed descriptor is like no other. Two threads that load at once write the
// same; one that reads meanwhile loses a line at worst.
static constexpr Identity closed{~std::uint64_t{0}, ~std::uint64_t{0}};
static std::atomic<bool> isRemembered{false};
static std::atomic<std::uint64_t> rememberedDevice{0};
static std::atomic<std::uint64_t> rememberedNode{0};

// Numbers beyond this are not looked at.
static constexpr int descriptorsTried = 1024;
// By number: whether the host had the same stream there at the load already, as
// it may have the null device or its terminal for other purposes.
static std::array<std::atomic<bool>, descriptorsTried> wasThere{};

// The host may open or close the descriptor meanwhile, which is no harm. Under
// the thread sanitizer fstat would be a use that has to be ordered with both,
// and the host's run would end with a report.
static Identity identityOf(int descriptor) {
  struct stat status = {};
  if (fstatat(descriptor, "", &status, AT_EMPTY_PATH) != 0)
    return closed;
  return {status.st_dev, status.st_ino};
}

void platform::rememberStandardError() {
  const Identity now = identityOf(STDERR_FILENO);
  rememberedDevice = now.device;
  rememberedNode = now.node;
  for (int other = STDERR_FILENO + 1; other != descriptorsTried; ++other)
    wasThere[static_cast<std::size_t>(other)] =
        !(now == closed) && identityOf(other) == now;
  isRemembered = true;
}

// What is written there is lost anyway, and a host may open it at any time.
static bool isNullDevice(const Identity &stream) {
  struct stat status = {};
  return stat("/dev/null", &status) == 0 &&
         stream == Identity{status.st_dev, status.st_ino};
}

// Where a host keeps a stream that it puts back later: under a number that it
// got since the load.
static bool isKeptElsewhere(const Identity &stream) {
  if (isNullDevice(stream))
    return false;
  for (int other = STDERR_FILENO + 1; other != descriptorsTried; ++other)
    if (!wasThere[static_cast<std::size_t>(other)] &&
        identityOf(other) == stream)
      return true;
  return false;
}

static bool isStandardError() {
  if (!isRemembered)
    return true;
  const Identity then{rememberedDevice, rememberedNode};
  const Identity now = identityOf(STDERR_FILENO);
  if (now == closed || then == closed)
    return false;
  return now == then || isKeptElsewhere(then);
}

static bool canBlock() {
  const int flags = fcntl(STDERR_FILENO, F_GETFL);
  return flags >= 0 && (flags & O_NONBLOCK) == 0;
}

// An error counts as free space: the write that follows meets it.
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

// Where any byte can be written without waiting, so many can be at once.
static std::size_t pieceSize(std::size_t size) {
  struct stat status = {};
  const bool isFile =
      fstat(STDERR_FILENO, &status) == 0 && S_ISREG(status.st_mode);
  return isFile ? size : std::min<std::size_t>(size, PIPE_BUF);
}

static void writePieces(llvm::StringRef bytes) {
  bool isFirst = true; // useStandardError has waited for that one
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
