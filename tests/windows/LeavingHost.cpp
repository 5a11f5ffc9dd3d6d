// A host that never unloads the agent, and ends or frees the library instead.
//
// leaving_host MODE, with the agent configured by the environment as usual:
//   free    frees the library when the runtime has refused its table
//   kept    frees the library, which stays: the runtime has its table
//   exit    returns from main
//   locked  ends the process while other threads hold, until the end, the agent
//   lock
//           (in the creation of a kernel) and the C runtime's locks of the
//           standard streams

#include "tests/host/AgentHost.h"
#include "tests/windows/Library.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>

#include <windows.h>

using namespace corvane;
using namespace corvane::test;

static AgentHost host;
static std::atomic<unsigned> threadsAtWork{0};

// The agent holds its lock during this call, which never returns.
static cl_kernel CL_API_CALL createWithoutEnd(cl_program, const char *,
                                              cl_int *) {
  ++threadsAtWork;
  Sleep(INFINITE);
  return nullptr;
}

static cl_int CL_API_CALL refuseTable(AgentOperations *, void *, std::size_t) {
  return CL_INVALID_OPERATION;
}

static cl_int CL_API_CALL failToRelease(cl_program) {
  return CL_INVALID_PROGRAM;
}

static void holdStreams() {
  _lock_file(stdout);
  _lock_file(stderr);
  ++threadsAtWork;
  Sleep(INFINITE);
}

static void startThreads() {
  std::thread([] {
    host.table().clCreateKernel(nullptr, nullptr, nullptr);
  }).detach();
  std::thread(holdStreams).detach();
  while (threadsAtWork != 2)
    Sleep(1);
}

// Writes rows as if a kernel and a variant of it had run.
static void writeRows(const std::string &directory) {
  std::ofstream log(directory + "/.auto.csv", std::ios::app | std::ios::binary);
  log << "scale,64,,,8,,,g0S2,2.500\n"
         "scale,64,,,8,,,baseline,4.000\n";
}

int main(int count, char **arguments) {
  const std::string mode = count == 2 ? arguments[1] : "";
  const char *directory = std::getenv("CORVANE_AUTOTUNE");
  if ((mode != "free" && mode != "kept" && mode != "exit" &&
       mode != "locked") ||
      !directory) {
    std::fprintf(stderr, "usage: CORVANE_AUTOTUNE=... leaving_host MODE\n");
    return 2;
  }

  host.table().clCreateKernel = createWithoutEnd;
  host.table().clReleaseProgram = failToRelease;
  if (mode == "free")
    host.operations()->setICDDispatchTable = refuseTable;
  void *library = loadOrEnd("CorvaneAg.dll");
  const cl_int status = findFunction<cl_int (*)(AgentOperations *)>(
      library, "clAgent_OnLoad")(host.operations());
  if (status != (mode == "free" ? CL_INVALID_OPERATION : CL_SUCCESS))
    return 3;
  writeRows(directory);
  if (mode == "locked") {
    startThreads();
    // A return from main would have the C runtime flush the streams, and wait
    // for their locks, while the other threads still run.
    ExitProcess(0);
  }
  if (mode == "free" || mode == "kept") {
    freeLibrary(library);
    // Whether the library was really freed; the test checks the results later.
    const bool isThere = GetModuleHandleA("CorvaneAg.dll");
    return isThere == (mode == "kept") ? 0 : 4;
  }
  return 0;
}
