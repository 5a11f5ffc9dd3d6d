// Opens and writes regular files on Posix systems.

#include "base/Platform.h"
#include "base/WriteSignals.h"

#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace corvane;
using platform::FileHandle;
using platform::FileUse;
using platform::OpenedFile;

namespace {
/// A file descriptor that closes itself; negative: none.
class Descriptor {
public:
  explicit Descriptor(int opened) : number(opened) {}
  ~Descriptor() {
    if (number >= 0)
      close(number);
  }
  Descriptor(const Descriptor &) = delete;
  Descriptor &operator=(const Descriptor &) = delete;

  int get() const { return number; }
  void reset(int other) {
    if (number >= 0)
      close(number);
    number = other;
  }
  int release() { return std::exchange(number, -1); }

private:
  int number;
};
} // namespace

static int flagsFor(FileUse use) {
  switch (use) {
  case FileUse::Read:
    return O_RDONLY;
  case FileUse::Replace:
    return O_WRONLY | O_CREAT;
  case FileUse::Append:
    return O_RDWR | O_CREAT | O_APPEND;
  case FileUse::AddOnly:
    return O_WRONLY | O_CREAT | O_APPEND;
  }
  return O_RDONLY;
}

static const char *modeFor(FileUse use) {
  switch (use) {
  case FileUse::Read:
    return "rb";
  case FileUse::Replace:
    return "wb";
  case FileUse::Append:
    return "ab+";
  case FileUse::AddOnly:
    return "ab";
  }
  return "rb";
}

// A folder in the place of a file is an ordinary failure.
static bool isRefusedKind(mode_t mode) {
  return !S_ISREG(mode) && !S_ISDIR(mode);
}

// A link, a pipe that has no reader and a socket cannot be opened at all.
static bool leadsToRefusedKind(const char *path) {
  struct stat status = {};
  return lstat(path, &status) == 0 && isRefusedKind(status.st_mode);
}

// A host that has closed its standard streams goes on using their numbers.
static void moveFromStandardStreams(Descriptor &descriptor) {
  constexpr int firstOther = STDERR_FILENO + 1;
  if (descriptor.get() >= 0 && descriptor.get() < firstOther)
    descriptor.reset(fcntl(descriptor.get(), F_DUPFD_CLOEXEC, firstOther));
}

OpenedFile platform::openRegularFile(const std::string &path, FileUse use) {
  // O_NONBLOCK is for the opening alone: it means nothing to a regular file.
  Descriptor descriptor(open(
      path.c_str(),
      flagsFor(use) | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY, 0666));
  moveFromStandardStreams(descriptor);
  if (descriptor.get() < 0)
    return {nullptr, leadsToRefusedKind(path.c_str())};
  struct stat status = {};
  if (fstat(descriptor.get(), &status) != 0)
    return {};
  if (!S_ISREG(status.st_mode))
    return {nullptr, isRefusedKind(status.st_mode)};
  if (use == FileUse::Replace && ftruncate(descriptor.get(), 0) != 0)
    return {};
  FileHandle file(fdopen(descriptor.get(), modeFor(use)));
  if (!file)
    return {};
  (void)descriptor.release();
  std::setvbuf(file.get(), nullptr, _IONBF, 0);
  return {std::move(file), false};
}

std::size_t platform::writeBytes(std::FILE *file, const void *bytes,
                                 std::size_t count) {
  const WriteSignals onlyFail;
  return std::fwrite(bytes, 1, count, file);
}
