// Starts programs, and waits for them, by the calls of Windows.

#include "tools/corvane/Process.h"

#include "llvm/Support/ConvertUTF.h"

#include <windows.h>

#include <shellapi.h>

using namespace corvane;

// Text of this program is UTF-8.
static std::wstring wide(const std::string &text) {
  std::wstring converted;
  llvm::ConvertUTF8toWide(text, converted);
  return converted;
}

void corvane::setVariable(const std::string &name, const std::string &value) {
  SetEnvironmentVariableW(wide(name).c_str(), wide(value).c_str());
}

void corvane::removeVariable(const std::string &name) {
  SetEnvironmentVariableW(wide(name).c_str(), nullptr);
}

static std::string narrow(const wchar_t *text) {
  std::string converted;
  llvm::convertWideToUTF8(text, converted);
  return converted;
}

std::vector<std::string> corvane::variableNames() {
  std::vector<std::string> names;
  wchar_t *const block = GetEnvironmentStringsW();
  for (const wchar_t *entry = block; entry && *entry;
       entry += std::char_traits<wchar_t>::length(entry) + 1) {
    const std::string text = narrow(entry);
    // The current folders of drives have names that begin with "=".
    if (text[0] != '=')
      names.push_back(text.substr(0, text.find('=')));
  }
  if (block)
    FreeEnvironmentStringsW(block);
  return names;
}

std::string corvane::ownProgram() {
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(),
                                 static_cast<DWORD>(path.size())));
  return narrow(path.c_str());
}

std::vector<std::string> corvane::argumentsOf(int, char **) {
  std::vector<std::string> arguments;
  int count = 0;
  wchar_t **const values = CommandLineToArgvW(GetCommandLineW(), &count);
  for (int i = 1; values && i < count; ++i)
    arguments.push_back(narrow(values[i]));
  LocalFree(values);
  return arguments;
}

// One argument as the C runtime of the program takes it apart: quoted, with the
// backslashes doubled that come before a quotation mark.
static std::string quoted(const std::string &argument) {
  std::string text = "\"";
  std::size_t backslashes = 0;
  for (char character : argument) {
    if (character == '"')
      text.append(backslashes + 1, '\\');
    backslashes = character == '\\' ? backslashes + 1 : 0;
    text += character;
  }
  return text.append(backslashes, '\\') + "\"";
}

static std::wstring commandLine(const Program &program) {
  std::string line;
  for (const std::string &argument : program)
    line += (line.empty() ? "" : " ") + quoted(argument);
  return wide(line);
}

static ProgramEnd notStarted(DWORD error) {
  const bool missing =
      error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
  return {false, missing ? NotFound : NotExecutable,
          missing ? "No such file" : "Windows error " + std::to_string(error)};
}

// The console tells all its processes; the program decides what to do.
static BOOL WINAPI liveOn(DWORD) { return TRUE; }

ProgramEnd corvane::runAndWait(const Program &program) {
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process = {};
  std::wstring line = commandLine(program);
  SetConsoleCtrlHandler(liveOn, TRUE);
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                      nullptr, &startup, &process))
    return notStarted(GetLastError());
  CloseHandle(process.hThread);
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD exitCode = CommandFailed;
  GetExitCodeProcess(process.hProcess, &exitCode);
  CloseHandle(process.hProcess);
  SetConsoleCtrlHandler(liveOn, FALSE);
  return {true, static_cast<int>(exitCode), std::string()};
}

ProgramEnd corvane::become(const Program &program) {
  return runAndWait(program);
}

LoaderAnswer corvane::askLoader(const std::string &layer) {
  const HMODULE loader = LoadLibraryW(L"OpenCL.dll");
  if (!loader)
    return LoaderAnswer::IsMissing;
  using GetPlatforms = int(WINAPI *)(unsigned, void *, unsigned *);
  const auto getPlatforms = reinterpret_cast<GetPlatforms>(
      reinterpret_cast<void *>(GetProcAddress(loader, "clGetPlatformIDs")));
  unsigned platforms = 0;
  const int status = getPlatforms ? getPlatforms(0, nullptr, &platforms) : -1;
  if (GetModuleHandleW(wide(layer).c_str()))
    return LoaderAnswer::TakesLayers;
  return status != 0 || platforms == 0 ? LoaderAnswer::HasNoPlatform
                                       : LoaderAnswer::TakesNone;
}
