// Finds and loads libraries by the module functions of Windows.

#include "layer/Library.h"

#include <vector>

#include <windows.h>

using namespace corvane;

/// The longest path that Windows knows, in characters with the final null.
static constexpr size_t longestPath = 32768;

std::filesystem::path layer::ownFolder() {
  // The address of any object of this library tells its file.
  static const char here = 0;
  HMODULE module = nullptr;
  if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                              GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                          reinterpret_cast<LPCWSTR>(&here), &module))
    return {};
  std::vector<wchar_t> file(longestPath);
  const DWORD length =
      GetModuleFileNameW(module, file.data(), static_cast<DWORD>(file.size()));
  if (length == 0 || length >= file.size())
    return {};
  return std::filesystem::path(file.data(), file.data() + length).parent_path();
}

void *layer::openLibrary(const std::filesystem::path &file,
                         std::string &problem) {
  // Libraries that this one needs are looked for beside it, too.
  HMODULE library =
      LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (!library)
    problem = file.u8string() + ": error " + std::to_string(GetLastError());
  return reinterpret_cast<void *>(library);
}

void *layer::findExport(void *library, const char *name) {
  return reinterpret_cast<void *>(
      GetProcAddress(reinterpret_cast<HMODULE>(library), name));
}
