// Answers the operations of the agent object.

#include "tests/support/FakeAgent.h"

#include "tests/support/FakeTable.h"
#include "tests/support/Words.h"
#include "tests/support/World.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

using namespace corvane;
using namespace corvane::test;

[[noreturn]] static void stopAtOtherOperation() {
  std::fputs("An agent operation other than get and set was called.\n", stderr);
  std::abort();
}

FakeAgent::FakeAgent(World &ofRuntime)
    : current(makeFakeTable()), world(ofRuntime) {
  for (auto &operation : object.operations.unused)
    operation = stopAtOtherOperation;
  object.operations.getICDDispatchTable = get;
  object.operations.setICDDispatchTable = set;
  for (auto &operation : object.beyond)
    operation = stopAtOtherOperation;
  object.owner = this;
}

// The operations are the first member of the object, so they have its address.
FakeAgent &FakeAgent::ownerOf(AgentOperations *agent) {
  return *reinterpret_cast<Object *>(agent)->owner;
}

cl_int CL_API_CALL FakeAgent::get(AgentOperations *agent, void *table,
                                  std::size_t size) {
  FakeAgent &self = ownerOf(agent);
  if (const auto failure = self.world.begin(
          "GetICDDispatchTable", {"agent", place(table), std::to_string(size)}))
    return *failure;
  if (!table || size != sizeof self.current)
    return CL_INVALID_VALUE;
  std::memcpy(table, &self.current, size);
  return CL_SUCCESS;
}

cl_int CL_API_CALL FakeAgent::set(AgentOperations *agent, void *table,
                                  std::size_t size) {
  FakeAgent &self = ownerOf(agent);
  const auto failure = self.world.begin(
      "SetICDDispatchTable", {"agent", place(table), std::to_string(size)});
  if (!table || size != sizeof self.current)
    return CL_INVALID_VALUE;
  DispatchTable given{};
  std::memcpy(&given, table, size);
  self.tablesSet.push_back(given);
  self.lastPlace = table;
  if (failure)
    return *failure;
  self.current = given;
  return CL_SUCCESS;
}
