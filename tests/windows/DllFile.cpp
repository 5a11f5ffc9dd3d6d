// Reads the import, export and version tables of a DLL.

#include "tests/windows/DllFile.h"

#include "gtest/gtest.h"

#include <windows.h>

using namespace corvane::test;

// Maps the DLL without running its code or loading the DLLs that it needs.
DllFile::DllFile(const std::string &name) : path(name) {
  HMODULE module =
      LoadLibraryExA(name.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
  EXPECT_TRUE(module) << name << ": error " << GetLastError();
  library = reinterpret_cast<void *>(module);
}

DllFile::~DllFile() { FreeLibrary(static_cast<HMODULE>(library)); }

const char *DllFile::textAt(unsigned long offset) const {
  return static_cast<const char *>(library) + offset;
}

template <typename Table> const Table *DllFile::table(unsigned index) const {
  const auto *dos = static_cast<const IMAGE_DOS_HEADER *>(library);
  const void *start = textAt(static_cast<unsigned long>(dos->e_lfanew));
  const auto *headers = static_cast<const IMAGE_NT_HEADERS64 *>(start);
  const void *found =
      textAt(headers->OptionalHeader.DataDirectory[index].VirtualAddress);
  return static_cast<const Table *>(found);
}

std::vector<std::string> DllFile::imported() const {
  std::vector<std::string> names;
  for (const auto *each =
           table<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT);
       each->Name != 0; ++each)
    names.emplace_back(textAt(each->Name));
  return names;
}

std::vector<std::string> DllFile::exported() const {
  const auto *exports =
      table<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT);
  const void *offsets = textAt(exports->AddressOfNames);
  std::vector<std::string> names;
  // Exports without a name would be counted here, too.
  EXPECT_EQ(exports->NumberOfFunctions, exports->NumberOfNames);
  for (DWORD i = 0; i != exports->NumberOfNames; ++i)
    names.emplace_back(textAt(static_cast<const DWORD *>(offsets)[i]));
  return names;
}

std::vector<char> DllFile::versionResource() const {
  DWORD ignored = 0;
  std::vector<char> bytes(GetFileVersionInfoSizeA(path.c_str(), &ignored));
  if (!GetFileVersionInfoA(path.c_str(), 0, static_cast<DWORD>(bytes.size()),
                           bytes.data()))
    bytes.clear();
  return bytes;
}

std::string DllFile::versionText(const std::string &key) const {
  const std::vector<char> resource = versionResource();
  const std::string query = "\\StringFileInfo\\040904b0\\" + key;
  void *text = nullptr;
  UINT length = 0;
  if (resource.empty() ||
      !VerQueryValueA(resource.data(), query.c_str(), &text, &length))
    return "";
  return static_cast<const char *>(text);
}

std::string DllFile::versionNumber() const {
  const std::vector<char> resource = versionResource();
  void *found = nullptr;
  UINT length = 0;
  if (resource.empty() ||
      !VerQueryValueA(resource.data(), "\\", &found, &length))
    return "";
  const auto *info = static_cast<const VS_FIXEDFILEINFO *>(found);
  return std::to_string(HIWORD(info->dwFileVersionMS)) + "." +
         std::to_string(LOWORD(info->dwFileVersionMS)) + "." +
         std::to_string(HIWORD(info->dwFileVersionLS)) + "." +
         std::to_string(LOWORD(info->dwFileVersionLS));
}
