// Opens and writes regular files on Windows.

#include "base/Platform.h"

#include <cstdint>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

using namespace corvane;
using platform::FileHandle;
using platform::FileUse;
using platform::OpenedFile;

namespace {
/// A handle of the system's that closes itself.
class SystemHandle {
public:
  explicit SystemHandle(HANDLE opened) : handle(opened) {}
  ~SystemHandle() {
    if (isOpen())
      CloseHandle(handle);
  }
  SystemHandle(const SystemHandle &) = delete;
  SystemHandle &operator=(const SystemHandle &) = delete;

  bool isOpen() const { return handle != INVALID_HANDLE_VALUE; }
  HANDLE get() const { return handle; }
  HANDLE release() { return std::exchange(handle, INVALID_HANDLE_VALUE); }

private:
  HANDLE handle;
};
} // namespace

static bool isLink(DWORD attributes) {
  return attributes != INVALID_FILE_ATTRIBUTES &&
         (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

static HANDLE openHandle(const char *path, FileUse use) {
  const bool isRead = use == FileUse::Read || use == FileUse::Append;
  const bool isWritten = use != FileUse::Read;
  return CreateFileA(
      path, (isRead ? GENERIC_READ : 0) | (isWritten ? GENERIC_WRITE : 0),
      FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
      isWritten ? OPEN_ALWAYS : OPEN_EXISTING,
      FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
}

// A link in the file's own name is opened as itself, and so can be told.
static bool isRefusedKind(HANDLE handle) {
  BY_HANDLE_FILE_INFORMATION information = {};
  return GetFileType(handle) != FILE_TYPE_DISK ||
         !GetFileInformationByHandle(handle, &information) ||
         isLink(information.dwFileAttributes);
}

namespace {
/// How the C runtime is told of a use, for a descriptor and for a file object.
struct RuntimeUse {
  int flags;
  const char *mode;
};
} // namespace

static RuntimeUse runtimeUse(FileUse use) {
  switch (use) {
  case FileUse::Read:
    return {_O_RDONLY, "rb"};
  case FileUse::Replace:
    return {_O_WRONLY, "wb"};
  case FileUse::Append:
    return {_O_APPEND | _O_RDWR, "ab+"};
  case FileUse::AddOnly:
    return {_O_APPEND | _O_WRONLY, "ab"};
  }
  return {};
}

// The new file object owns the handle. No buffer, and bytes as they are.
static FileHandle fileOver(SystemHandle &handle, FileUse use) {
  const RuntimeUse known = runtimeUse(use);
  const int flags = _O_BINARY | _O_NOINHERIT | known.flags;
  const int descriptor =
      _open_osfhandle(reinterpret_cast<std::intptr_t>(handle.get()), flags);
  if (descriptor < 0)
    return nullptr;
  (void)handle.release();
  FileHandle file(_fdopen(descriptor, known.mode));
  if (!file)
    _close(descriptor);
  else
    std::setvbuf(file.get(), nullptr, _IONBF, 0);
  return file;
}

OpenedFile platform::openRegularFile(const std::string &path, FileUse use) {
  SystemHandle handle(openHandle(path.c_str(), use));
  if (!handle.isOpen())
    return {nullptr, isLink(GetFileAttributesA(path.c_str()))};
  if (isRefusedKind(handle.get()))
    return {nullptr, true};
  if (use == FileUse::Replace && !SetEndOfFile(handle.get()))
    return {};
  return {fileOver(handle, use), false};
}

std::size_t platform::writeBytes(std::FILE *file, const void *bytes,
                                 std::size_t count) {
  return std::fwrite(bytes, 1, count, file);
}
