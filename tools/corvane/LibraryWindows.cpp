// Loads libraries by the calls of Windows.

#include "tools/corvane/Library.h"

#include "llvm/ADT/StringRef.h"
#include "llvm/Support/ConvertUTF.h"

#include <windows.h>

using namespace corvane;

const char *const corvane::loaderFile = "OpenCL.dll";

static std::wstring wide(const std::string &text) {
  std::wstring converted;
  llvm::ConvertUTF8toWide(text, converted);
  return converted;
}

void *corvane::openLibrary(const std::string &file) {
  return LoadLibraryW(wide(file).c_str());
}

bool corvane::isLoaded(const std::string &file) {
  return GetModuleHandleW(wide(file).c_str()) != nullptr;
}

void *corvane::symbolIn(void *library, const char *name) {
  return reinterpret_cast<void *>(
      GetProcAddress(static_cast<HMODULE>(library), name));
}

std::string corvane::fileOfAddress(const void *address) {
  HMODULE module = nullptr;
  if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                              GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                          static_cast<const wchar_t *>(address), &module))
    return {};
  std::wstring path(32768, L'\0');
  path.resize(
      GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
  std::string file;
  llvm::convertWideToUTF8(path, file);
  return file;
}

void corvane::endAfter(unsigned) {}
