// The dispatch tables of the layer: the runtime's, the agent's, the loader's.

#pragma once

#include <CL/cl_icd.h>

namespace corvane::layer {

/// Entries that the agent interface speaks of: the first ones of a table.
constexpr cl_uint agentEntries = 119;

/// Size in bytes of those entries.
constexpr size_t agentTableSize = agentEntries * sizeof(void *);

/// The one set of tables of the process. Each starts as a copy of the loader's,
/// so an entry that nobody replaces leads straight to what lies below; an entry
/// that the loader does not offer stays null.
///
/// Written only while the loader initialises the layer, which it does on one
/// thread; never freed, because a loader may use a table in place.
struct LayerTable {
  cl_icd_dispatch runtime; ///< as the loader gave it: what lies below
  /// What the agent reads and then writes: first the runtime with the layer's
  /// lower half before it, then the agent's hooks over that.
  cl_icd_dispatch agent;
  /// What the loader gets: the agent's with the layer's upper half before it.
  cl_icd_dispatch application;
  cl_uint count; ///< entries filled in; the loader knows what to do with others
};

/// The tables of this process, all null before `copyLoaderTable`.
LayerTable &layerTable();

/// Takes over the `count` entries of `loaderTable`, or as many as we know of.
void copyLoaderTable(LayerTable &table, const cl_icd_dispatch &loaderTable,
                     cl_uint count);

/// Whether a table of \p count entries has one that the layer or the agent has
/// put into the application's table: then it leads to this layer already.
bool leadsToUs(const LayerTable &table, const cl_icd_dispatch &loaderTable,
               cl_uint count);

/// Keeps the libraries mapped that the runtime's entries lie in. They are
/// called while commands of the application's run, and it may close its loader
/// before.
void keepRuntimeLibraries(const LayerTable &table);

/// The calls below the layer, which neither the agent nor the layer sees.
inline const cl_icd_dispatch &runtime() { return layerTable().runtime; }

/// The calls as the agent leaves them.
inline const cl_icd_dispatch &agent() { return layerTable().agent; }

/// The calls as the application makes them.
inline const cl_icd_dispatch &application() { return layerTable().application; }

/// Puts a call of the layer's into a table, unless there is none to replace.
template <typename Function> void replace(Function &entry, Function layerCall) {
  if (entry)
    entry = layerCall;
}

} // namespace corvane::layer
