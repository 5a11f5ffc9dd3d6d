// Keeps the one copy of the runtime's dispatch table.

#include "agent/RuntimeTable.h"

using namespace corvane;

DispatchTable detail::savedTable;

template <typename Entry>
static void writeIfChanged(Entry &entry, Entry wanted) {
  if (entry != wanted)
    entry = wanted;
}

void corvane::writeChangedEntries(DispatchTable &table,
                                  const DispatchTable &wanted) {
#define ENTRY(index, name) writeIfChanged(table.name, wanted.name);
#include "agent/DispatchEntries.def"
}

void corvane::saveRuntimeTable(const DispatchTable &table) {
  writeChangedEntries(detail::savedTable, table);
}
