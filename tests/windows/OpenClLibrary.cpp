// The real OpenCL functions of opencl.dll.

#include "tests/windows/OpenClLibrary.h"

#include "tests/windows/Library.h"

using namespace corvane;

DispatchTable test::openClTable() {
  void *library = loadOrEnd("opencl.dll");
  DispatchTable table{};
#define ENTRY(index, name)                                                     \
  table.name = findFunction<decltype(table.name)>(library, #name);
#include "agent/DispatchEntries.def"
  return table;
}
