// Fills and compares the tables, which may be shorter than our headers know.

#include "layer/LayerTable.h"

#include "base/Platform.h"

#include <algorithm>
#include <cstring>

using namespace corvane::layer;

static constexpr cl_uint knownEntries =
    sizeof(cl_icd_dispatch) / sizeof(void *);

static_assert(knownEntries >= agentEntries,
              "the OpenCL headers describe less than the agent works on");

LayerTable &corvane::layer::layerTable() {
  static LayerTable table;
  return table;
}

void corvane::layer::copyLoaderTable(LayerTable &table,
                                     const cl_icd_dispatch &loaderTable,
                                     cl_uint count) {
  // A loader of another age may offer fewer entries than our headers know, so
  // its table must not be copied as a whole.
  table.count = std::min(count, knownEntries);
  std::memcpy(&table.runtime, &loaderTable, table.count * sizeof(void *));
  table.agent = table.runtime;
  table.upper = table.runtime;
  table.application = table.runtime;
}

static const void *entryAt(const cl_icd_dispatch &table, cl_uint index) {
  const void *entry = nullptr;
  std::memcpy(&entry,
              reinterpret_cast<const char *>(&table) + index * sizeof(entry),
              sizeof(entry));
  return entry;
}

bool corvane::layer::leadsToUs(const LayerTable &table,
                               const cl_icd_dispatch &loaderTable,
                               cl_uint count) {
  for (cl_uint i = 0; i < std::min(count, table.count); ++i) {
    const void *ours = entryAt(table.application, i);
    if (ours != entryAt(table.runtime, i) && ours == entryAt(loaderTable, i))
      return true;
  }
  return false;
}

void corvane::layer::keepRuntimeLibraries(const LayerTable &table) {
  for (cl_uint i = 0; i < table.count; ++i)
    if (const void *entry = entryAt(table.runtime, i))
      corvane::platform::keepLibraryOf(entry);
}
