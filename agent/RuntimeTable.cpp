// Keeps the one copy of the runtime's dispatch table.

#include "agent/RuntimeTable.h"

using namespace corvane;

DispatchTable detail::savedTable;

template <typename Entry>
static void replaceIfChanged(Entry &saved, Entry given) {
  if (saved != given)
    saved = given;
}

void corvane::saveRuntimeTable(const DispatchTable &table) {
#define ENTRY(index, name)                                                     \
  replaceIfChanged(detail::savedTable.name, table.name);
#include "agent/DispatchEntries.def"
}
