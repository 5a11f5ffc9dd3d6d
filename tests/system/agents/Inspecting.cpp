// A test agent that tries every operation of the object it is given.

#include "tests/system/agents/Findings.h"

#include <cstring>

using namespace corvane::test;

using Operation = cl_int(CL_API_CALL *)(void *agent, void *table, size_t size);

static Findings found;
static void *agentGiven;

static Operation operationAt(unsigned position) {
  Operation operation = nullptr;
  std::memcpy(&operation,
              static_cast<char *>(agentGiven) + position * sizeof(void *),
              sizeof(operation));
  return operation;
}

static cl_int installOwnTable() {
  void *table[agentEntries];
  for (unsigned i = 0; i < agentEntries; ++i)
    table[i] = agentEntry(i);
  return operationAt(8)(agentGiven, table, sizeof(table));
}

static void tryEveryOperation() {
  for (unsigned i = 0; i < agentOperations; ++i) {
    const Operation operation = operationAt(i);
    found.isNull[i] = operation == nullptr;
    if (operation)
      found.statuses[i] = operation(agentGiven, nullptr, sizeof(found.table));
  }
}

static void tryOtherSizes() {
  void *table[agentEntries + 1] = {};
  const size_t size = sizeof(found.table);
  found.getShort = operationAt(7)(agentGiven, table, size - sizeof(void *));
  found.getLong = operationAt(7)(agentGiven, table, size + sizeof(void *));
  found.setShort = operationAt(8)(agentGiven, table, size - sizeof(void *));
  found.setLong = operationAt(8)(agentGiven, table, size + sizeof(void *));
}

extern "C" cl_int CL_API_CALL clAgent_OnLoad(void *agent) {
  agentGiven = agent;
  tryEveryOperation();
  tryOtherSizes();
  found.get = operationAt(7)(agent, found.table, sizeof(found.table));
  found.set = installOwnTable();
  return operationAt(7)(agent, found.tableAgain, sizeof(found.tableAgain));
}

extern "C" void CL_API_CALL clAgent_OnUnload(void *) {}

extern "C" const Findings *CL_API_CALL findings() { return &found; }

extern "C" cl_int CL_API_CALL installAgain() { return installOwnTable(); }
