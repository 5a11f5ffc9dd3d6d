// Starts a program in a job with pipes for its output, and waits for it.

#include "tests/windows/Process.h"

#include "tests/support/EnvGuard.h"
#include "tests/support/TempFolder.h"

#include "gtest/gtest.h"

#include <list>

#include <windows.h>

using namespace corvane;
using namespace corvane::test;

static std::string ownFolder() {
  std::string path(32768, '\0');
  path.resize(GetModuleFileNameA(nullptr, path.data(),
                                 static_cast<DWORD>(path.size())));
  return path.substr(0, path.rfind('\\') + 1);
}

static HANDLE createInheritable(const std::string &path) {
  SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
  return CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inheritable,
                     CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
}

// The programs of a job end with the job, and the job ends with this process.
// So a program that hangs does not outlive the test, which has a time limit.
static HANDLE makeJob() {
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  HANDLE job = CreateJobObjectA(nullptr, nullptr);
  SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits,
                          sizeof limits);
  return job;
}

static unsigned long runToEnd(std::string command, HANDLE out, HANDLE errors) {
  STARTUPINFOA start = {};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = out;
  start.hStdError = errors;
  PROCESS_INFORMATION process = {};
  if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0,
                      nullptr, nullptr, &start, &process)) {
    ADD_FAILURE() << command << ": error " << GetLastError();
    return ~0UL;
  }
  HANDLE job = makeJob();
  AssignProcessToJobObject(job, process.hProcess);
  DWORD exitCode = ~0UL;
  WaitForSingleObject(process.hProcess, INFINITE);
  GetExitCodeProcess(process.hProcess, &exitCode);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  CloseHandle(job);
  return exitCode;
}

Finished test::runProgram(const std::string &program,
                          const std::string &arguments,
                          const Variables &variables) {
  std::list<EnvGuard> environment;
  for (const auto &[name, value] : variables)
    environment.emplace_back(name.c_str(), value);

  TempFolder folder;
  Finished finished;
  HANDLE out = createInheritable(folder.file("out"));
  HANDLE errors = createInheritable(folder.file("errors"));
  finished.exitCode = runToEnd(
      "\"" + ownFolder() + program + ".exe\" " + arguments, out, errors);
  CloseHandle(out);
  CloseHandle(errors);
  finished.out = folder.read("out");
  finished.errors = folder.read("errors");
  return finished;
}
