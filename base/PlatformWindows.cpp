// Implements the platform functions for Windows, through its C runtime.

#include "base/Platform.h"

#include "llvm/ADT/StringRef.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <string>

#include <direct.h>
#include <fcntl.h>
#include <io.h>
#include <windows.h>

using namespace corvane;

const char *const platform::directorySeparator = "\\";
const bool platform::keepsEmptyVariables = false;

void platform::defineVariable(const char *name, const char *value) {
  _putenv((std::string(name) + "=" + value).c_str());
}

// Here an empty assignment is how a variable is removed.
void platform::removeVariable(const char *name) { defineVariable(name, ""); }

// Windows starts a program with other rights only by way of a service, which
// gives it an environment of its own.
bool platform::hasForeignRights() { return false; }

bool platform::otherThreadsAreGone() {
  using IsEnding = BOOLEAN(NTAPI *)();
  static const auto isEnding =
      reinterpret_cast<IsEnding>(reinterpret_cast<void *>(GetProcAddress(
          GetModuleHandleA("ntdll.dll"), "RtlDllShutdownInProgress")));
  return isEnding && isEnding() != FALSE;
}

bool platform::createDirectory(const char *path) {
  return _mkdir(path) == 0 || errno == EEXIST;
}

platform::NewDirectory platform::createNewDirectory(const char *path) {
  if (_mkdir(path) == 0)
    return NewDirectory::Made;
  return errno == EEXIST ? NewDirectory::NameIsTaken : NewDirectory::NotMade;
}

std::string platform::hostName() {
  std::array<char, 256> name{};
  DWORD length = name.size();
  const bool known = GetComputerNameExA(ComputerNameDnsHostname, name.data(),
                                        &length) != FALSE;
  return known ? name.data() : "";
}

std::string platform::currentFolder() {
  struct Free {
    void operator()(char *text) const { std::free(text); }
  };
  const std::unique_ptr<char, Free> folder(_getcwd(nullptr, 0));
  return folder ? folder.get() : "";
}

// Capital letters make no other name.
std::string platform::userCacheFolder() {
  const char *const folder = std::getenv("LOCALAPPDATA");
  const std::string path = folder ? folder : "";
  const bool isAbsolute =
      path.size() > 2 && path[1] == ':' && (path[2] == '\\' || path[2] == '/');
  return isAbsolute ? path : std::string();
}

std::string platform::comparableFileName(std::string name) {
  return llvm::StringRef(name).lower();
}

void platform::cutFile(std::FILE *file, long length) {
  _chsize_s(_fileno(file), length);
}

bool platform::isOccupied(const void *address) {
  MEMORY_BASIC_INFORMATION memory = {};
  return VirtualQuery(address, &memory, sizeof memory) != 0 &&
         memory.State != MEM_FREE;
}

void platform::keepLibraryOf(const void *address) {
  HMODULE module = nullptr;
  (void)GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                               GET_MODULE_HANDLE_EX_FLAG_PIN,
                           reinterpret_cast<LPCWSTR>(address), &module);
}

void platform::makeErrorStreamBinary() { _setmode(2, _O_BINARY); }
