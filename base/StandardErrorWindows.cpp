// Writes on standard error on Windows.

#include "base/Platform.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdint>
#include <cstdlib>

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
static std::atomic<bool> isRemembered{false};
static std::atomic<std::uint32_t> rememberedKind{0};
static std::atomic<std::uint32_t> rememberedVolume{0};
static std::atomic<std::uint64_t> rememberedFile{0};

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

void platform::rememberStandardError() {
  const Identity now = identityOf(2);
  rememberedKind = now.kind;
  rememberedVolume = now.volume;
  rememberedFile = now.file;
  isRemembered = true;
}

// Where a host keeps a stream that it puts back later.
static bool isKeptElsewhere(const Identity &stream) {
  constexpr int descriptorsTried = 512;
  for (int other = 3; other != descriptorsTried; ++other)
    if (identityOf(other) == stream)
      return true;
  return false;
}

static bool isStandardError() {
  if (!isRemembered)
    return true;
  const Identity then{rememberedKind, rememberedVolume, rememberedFile};
  const Identity now = identityOf(2);
  if (now == closed || then == closed)
    return false;
  return now == then || isKeptElsewhere(then);
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
