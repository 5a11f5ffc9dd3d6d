// The dispatch table that the layer hands to the OpenCL loader.

#pragma once

#include <CL/cl_icd.h>

namespace corvane::layer {

/// Entries that the agent interface speaks of: the first ones of a table.
constexpr cl_uint agentEntries = 119;

/// Size in bytes of those entries.
constexpr size_t agentTableSize = agentEntries * sizeof(void *);

/// One table for the whole process. It starts as a copy of the loader's, so an
/// entry that nobody replaces leads straight to what lies below.
///
/// Written only while the loader initialises the layer, which it does on one
/// thread; it is never freed, because a loader may use it in place.
struct LayerTable {
  cl_icd_dispatch entries;
  cl_uint count; ///< entries filled in; the loader knows what to do with others
};

/// The table of this process, all null before `copyLoaderTable`.
LayerTable &layerTable();

/// Takes over the `count` entries of `loaderTable`, or as many as we know of.
void copyLoaderTable(LayerTable &table, const cl_icd_dispatch &loaderTable,
                     cl_uint count);

/// Puts `layerCall` where `entry` was, which goes to `before`. An entry that
/// the loader does not offer stays null.
template <typename Function>
void replaceEntry(Function &entry, Function &before, Function layerCall) {
  before = entry;
  if (entry)
    entry = layerCall;
}

} // namespace corvane::layer
