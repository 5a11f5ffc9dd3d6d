// The loose runtime and its agent interface.

#include "tests/support/loose/Runtime.h"

#include "tests/support/FakeTable.h"
#include "tests/support/LoadedAgent.h"
#include "tests/support/loose/Entries.h"
#include "tests/support/loose/Objects.h"

#include <cstring>
#include <utility>

using namespace corvane;
using namespace corvane::test;
using namespace corvane::test::loose;

DispatchTable corvane::test::loose::makeTable() {
  DispatchTable table = makeFakeTable();
  addLives(table);
  addPrograms(table);
  addKernels(table);
  addCommands(table);
  addEvents(table);
  addDevices(table);
  return table;
}

Runtime::Runtime(Behaviour behaviour)
    : shared(std::move(behaviour)), own(makeTable()),
      theContext(handleOf<cl_context>(new Context(shared))) {
  agent.operations.getICDDispatchTable = get;
  agent.operations.setICDDispatchTable = set;
  agent.owner = this;
}

Runtime::~Runtime() {
  shared.drain();
  objectOf(theContext)->release();
}

cl_int Runtime::load() { return clAgent_OnLoad(&agent.operations); }

void Runtime::unload() { clAgent_OnUnload(&agent.operations); }

// The operations are the first member of the agent, so they have its address.
cl_int CL_API_CALL Runtime::get(AgentOperations *operations, void *table,
                                std::size_t size) {
  const Runtime &self = *reinterpret_cast<Agent *>(operations)->owner;
  std::memcpy(table, &self.cl(), size);
  return CL_SUCCESS;
}

cl_int CL_API_CALL Runtime::set(AgentOperations *operations, void *table,
                                std::size_t) {
  Runtime &self = *reinterpret_cast<Agent *>(operations)->owner;
  self.current.store(static_cast<const DispatchTable *>(table),
                     std::memory_order_release);
  return CL_SUCCESS;
}
