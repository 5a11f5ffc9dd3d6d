// A runtime with an agent interface, over the real functions of opencl.dll.

#include "tests/windows/PlayedRuntime.h"

#include "agent/AgentInterface.h"
#include "tests/windows/Library.h"
#include "tests/windows/OpenClLibrary.h"
#include "tests/windows/PlayedEntries.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

using namespace corvane;
using namespace corvane::test;

static DispatchTable current;
static void *agentLibrary;
static AgentOperations agent;

static cl_int CL_API_CALL getTable(AgentOperations *, void *table,
                                   std::size_t size) {
  if (size != sizeof current)
    return CL_INVALID_VALUE;
  std::memcpy(table, &current, size);
  return CL_SUCCESS;
}

static cl_int CL_API_CALL setTable(AgentOperations *, void *table,
                                   std::size_t size) {
  if (size != sizeof current)
    return CL_INVALID_VALUE;
  std::memcpy(&current, table, size);
  return CL_SUCCESS;
}

static void endAgent() {
  finishCallbacks();
  const char *end = std::getenv("PLAYED_END");
  const std::string how = end ? end : "unload";
  if (how == "unload")
    findFunction<void (*)(AgentOperations *)>(agentLibrary,
                                              "clAgent_OnUnload")(&agent);
  if (how != "exit")
    freeLibrary(agentLibrary);
}

static bool startAgent() {
  current = openClTable();
  replaceEntries(current);
  agent.getICDDispatchTable = getTable;
  agent.setICDDispatchTable = setTable;

  agentLibrary = loadOrEnd("CorvaneAg.dll");
  const cl_int status = findFunction<cl_int (*)(AgentOperations *)>(
      agentLibrary, "clAgent_OnLoad")(&agent);
  if (status != CL_SUCCESS) {
    std::fprintf(stderr, "clAgent_OnLoad returned %d\n", status);
    std::exit(3);
  }
  std::atexit(endAgent);
  return true;
}

const DispatchTable &test::playedTable() {
  static const bool started = startAgent();
  (void)started;
  return current;
}
