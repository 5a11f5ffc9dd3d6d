// Fills a table from opencl.dll, and loads and ends the agent.

#include "tests/windows/PlayedRuntime.h"

#include "tests/host/AgentHost.h"
#include "tests/windows/Library.h"
#include "tests/windows/PlayedEntries.h"

#include <cstdio>
#include <cstdlib>
#include <string>

using namespace corvane;
using namespace corvane::test;

static void *agentLibrary;

// Made at the first call, after the static objects of the program.
static AgentHost &host() {
  static AgentHost theHost;
  return theHost;
}

// A table of the functions of opencl.dll.
static DispatchTable openClTable() {
  void *library = loadOrEnd("opencl.dll");
  DispatchTable table{};
#define ENTRY(index, name)                                                     \
  table.name = findFunction<decltype(table.name)>(library, #name);
#include "agent/DispatchEntries.def"
  return table;
}

static void endAgent() {
  finishCallbacks();
  const char *end = std::getenv("PLAYED_END");
  const std::string how = end ? end : "unload";
  if (how == "unload")
    findFunction<void (*)(AgentOperations *)>(agentLibrary, "clAgent_OnUnload")(
        host().operations());
  if (how != "exit")
    freeLibrary(agentLibrary);
}

static bool startAgent() {
  host().table() = openClTable();
  replaceEntries(host().table());

  agentLibrary = loadOrEnd("CorvaneAg.dll");
  const cl_int status = findFunction<cl_int (*)(AgentOperations *)>(
      agentLibrary, "clAgent_OnLoad")(host().operations());
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
  return host().table();
}
