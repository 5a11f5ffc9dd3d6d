// Writes on standard error on Windows.

#include "base/Platform.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include <io.h>
#include <windows.h>

using namespace corvane;

namespace {
/// A stream, as far as Windows tells it from others: files by their number, all
/// else by its kind.
struct Identity {
  std::uint32_t kind;
  std::uint32_t volume;
  std::uint64_t file;
  bool operator==(const Identity &other) const {
    return kind == other.kind && volume == other.volume && file == other.file;
  }
};
} // namespace

static constexpr Identity closed{FILE_TYPE_UNKNOWN, 0, 0};
// Descriptors of standard streams come first; so many are looked at.
static constexpr int firstOther = 3;
static constexpr int descriptorsTried = 512;

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

#if defined(_MSC_VER) || defined(_UCRT)
// The universal C runtime ends the process for a number that is not open,
// unless the thread says otherwise.
static HANDLE handleOf(int descriptor) {
  const auto ignore = [](const wchar_t *, const wchar_t *, const wchar_t *,
                         unsigned, std::uintptr_t) {};
  const auto before = _set_thread_local_invalid_parameter_handler(ignore);
  const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
  _set_thread_local_invalid_parameter_handler(before);
  return handle;
}
#else
static HANDLE handleOf(int descriptor) {
  return reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
}
#endif

static Identity identityOf(int descriptor) {
  const HANDLE handle = handleOf(descriptor);
  if (handle == INVALID_HANDLE_VALUE)
    return closed;
  const DWORD kind = GetFileType(handle);
  BY_HANDLE_FILE_INFORMATION information = {};
  if (kind != FILE_TYPE_DISK ||
      !GetFileInformationByHandle(handle, &information))
    return {kind, 0, 0};
  return {kind, information.dwVolumeSerialNumber,
          std::uint64_t{information.nFileIndexHigh} << 32 |
              information.nFileIndexLow};
}

static std::vector<Identity> streamsKeptNow() {
  std::vector<Identity> kept;
  if (identityOf(2).kind != FILE_TYPE_DISK)
    return kept;
  for (int other = firstOther; other != descriptorsTried; ++other) {
    const Identity open = identityOf(other);
    const bool isStream =
        open.kind == FILE_TYPE_PIPE || open.kind == FILE_TYPE_CHAR;
    if (isStream || (!(open == closed) && open == identityOf(1)))
      kept.push_back(open);
  }
  return kept;
}

void platform::rememberStandardError() {
  const Remembered now{identityOf(2), streamsKeptNow()};
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
  const Identity now = identityOf(2);
  if (now == closed || then->stream == closed)
    return false;
  return now == then->stream || isKept(*then);
}

void platform::useStandardError(llvm::function_ref<void()> write) {
  if (isStandardError())
    write();
}

void platform::writeStandardError(llvm::StringRef bytes) {
  useStandardError([&bytes] {
    while (!bytes.empty()) {
      const auto count =
          static_cast<unsigned>(std::min<std::size_t>(bytes.size(), INT_MAX));
      const int written = _write(2, bytes.data(), count);
      if (written <= 0)
        return;
      bytes = bytes.drop_front(static_cast<std::size_t>(written));
    }
  });
}
