// Lists the thirteen hooks and fills the table that carries them.

#include "agent/entry/LoadSteps.h"

#include "agent/RuntimeTable.h"
#include "base/ForkedChild.h"
#include "base/Platform.h"
#include "launch/Hooks.h"
#include "programs/Hooks.h"

using namespace corvane;

// The table that the runtime got from us. It may call through this copy, so a
// second load does not write entries that are right already.
static DispatchTable installedTable;

namespace {
/// The function that the table gets for a hook: in a forked child the runtime
/// is called without it.
template <auto entry, auto hook> struct ParentOnly;

template <auto entry, typename Result, typename... Arguments,
          Result(CL_API_CALL *hook)(Arguments...)>
struct ParentOnly<entry, hook> {
  static Result CL_API_CALL call(Arguments... arguments) {
    if (inForkedChild())
      return (runtime().*entry)(arguments...);
    return hook(arguments...);
  }
};
} // namespace

template <auto entry, auto hook, typename Visitor>
static void visitHook(Visitor visit) {
  visit(entry, ParentOnly<entry, hook>::call);
}

// Calls visit(entry, function) for each of the thirteen hooks.
template <typename Visitor> static void forEachHook(Visitor visit) {
  visitHook<&DispatchTable::clBuildProgram, hooks::clBuildProgram>(visit);
  visitHook<&DispatchTable::clReleaseProgram, hooks::clReleaseProgram>(visit);
  visitHook<&DispatchTable::clCreateKernel, hooks::clCreateKernel>(visit);
  visitHook<&DispatchTable::clCreateKernelsInProgram,
            hooks::clCreateKernelsInProgram>(visit);
  visitHook<&DispatchTable::clReleaseKernel, hooks::clReleaseKernel>(visit);
  visitHook<&DispatchTable::clSetKernelArg, hooks::clSetKernelArg>(visit);
  visitHook<&DispatchTable::clEnqueueNDRangeKernel,
            hooks::clEnqueueNDRangeKernel>(visit);
  visitHook<&DispatchTable::clCreateCommandQueue, hooks::clCreateCommandQueue>(
      visit);
  visitHook<&DispatchTable::clCreateBuffer, hooks::clCreateBuffer>(visit);
  visitHook<&DispatchTable::clReleaseContext, hooks::clReleaseContext>(visit);
  visitHook<&DispatchTable::clCreateProgramWithSource,
            hooks::clCreateProgramWithSource>(visit);
  visitHook<&DispatchTable::clLinkProgram, hooks::clLinkProgram>(visit);
  visitHook<&DispatchTable::clGetProgramInfo, hooks::clGetProgramInfo>(visit);
}

// A runtime that is loaded for the second time gives back our own hooks; the
// entries that they replaced are known already.
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
  const cl_int status =
      agent.setICDDispatchTable(&agent, &installedTable, dispatchTableSize);
  // From now on the runtime may call hooks and callbacks at any time.
  if (status == CL_SUCCESS)
    platform::keepLibraryOf(&installedTable);
  return status;
}
