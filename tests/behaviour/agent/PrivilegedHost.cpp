// A program that loads and unloads the agent, to be run with foreign rights.
// Exits with 0 if it has such rights and with 3 if not.

#include "agent/AgentInterface.h"
#include "tests/support/LoadedAgent.h"

#include <cstring>

#include <sys/auxv.h>

using namespace corvane;

static cl_int CL_API_CALL getTable(AgentOperations *, void *table,
                                   std::size_t size) {
  std::memset(table, 0, size);
  return CL_SUCCESS;
}

static cl_int CL_API_CALL setTable(AgentOperations *, void *, std::size_t) {
  return CL_SUCCESS;
}

// Turns the leak check at the end off: with foreign rights the checker may not
// look into this process.
extern "C" __attribute__((visibility("default"))) int __lsan_is_turned_off();
int __lsan_is_turned_off() { return 1; }

int main() {
  AgentOperations operations{};
  operations.getICDDispatchTable = getTable;
  operations.setICDDispatchTable = setTable;
  if (clAgent_OnLoad(&operations) != CL_SUCCESS)
    return 1;
  clAgent_OnUnload(&operations);
  return getauxval(AT_SECURE) != 0 ? 0 : 3;
}
