// The thirteen hooks and the table that carries them.

#include "agent/entry/HookTable.h"

#include "agent/RuntimeTable.h"
#include "launch/Hooks.h"
#include "programs/Hooks.h"

using namespace corvane;

// What the runtime got from us. It may call through it where it is, so a second
// load leaves every entry alone that is right already.
static DispatchTable installedTable;

// Calls visit(entry, hook) for each of the thirteen.
template <typename Visitor> static void forEachHook(Visitor visit) {
  visit(&DispatchTable::clBuildProgram, hooks::clBuildProgram);
  visit(&DispatchTable::clReleaseProgram, hooks::clReleaseProgram);
  visit(&DispatchTable::clCreateKernel, hooks::clCreateKernel);
  visit(&DispatchTable::clCreateKernelsInProgram,
        hooks::clCreateKernelsInProgram);
  visit(&DispatchTable::clReleaseKernel, hooks::clReleaseKernel);
  visit(&DispatchTable::clSetKernelArg, hooks::clSetKernelArg);
  visit(&DispatchTable::clEnqueueNDRangeKernel, hooks::clEnqueueNDRangeKernel);
  visit(&DispatchTable::clCreateCommandQueue, hooks::clCreateCommandQueue);
  visit(&DispatchTable::clCreateBuffer, hooks::clCreateBuffer);
  visit(&DispatchTable::clReleaseContext, hooks::clReleaseContext);
  visit(&DispatchTable::clCreateProgramWithSource,
        hooks::clCreateProgramWithSource);
  visit(&DispatchTable::clLinkProgram, hooks::clLinkProgram);
  visit(&DispatchTable::clGetProgramInfo, hooks::clGetProgramInfo);
}

// A runtime that is loaded for the second time gives back our own hooks; what
// stood there before them is known already.
static DispatchTable withoutOurHooks(DispatchTable table) {
  forEachHook([&table](auto entry, auto hook) {
    if (table.*entry == hook)
      table.*entry = runtime().*entry;
  });
  return table;
}

static DispatchTable withOurHooks(DispatchTable table) {
  forEachHook([&table](auto entry, auto hook) {
    if (table.*entry)
      table.*entry = hook;
  });
  return table;
}

cl_int corvane::installHooks(AgentOperations &agent) {
  DispatchTable given{};
  if (const cl_int status =
          agent.getICDDispatchTable(&agent, &given, dispatchTableSize))
    return status;

  saveRuntimeTable(withoutOurHooks(given));
  writeChangedEntries(installedTable, withOurHooks(runtime()));
  return agent.setICDDispatchTable(&agent, &installedTable, dispatchTableSize);
}
