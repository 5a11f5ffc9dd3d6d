// The dispatch tables of the process, from the runtime's to the application's.

#pragma once

#include <CL/cl_icd.h>

namespace corvane::layer {

/// Entries that the agent interface speaks of: the first ones of a table.
constexpr cl_uint agentEntries = 119;

/// Size in bytes of those entries.
constexpr size_t agentTableSize = agentEntries * sizeof(void *);

/// The one set of tables of the process. Each starts as a copy of the one
/// before it, so an entry without a hook leads straight to the runtime; an
/// entry that the loader does not offer stays null.
///
/// Written only while the loader initialises the layer, which it does on one
/// thread; never freed, because a loader may use a table in place.
struct LayerTable {
  cl_icd_dispatch runtime; ///< as the loader gave it
  /// What the agent reads and then writes: first the runtime's with the lower
  /// half's hooks, then the agent's hooks over those.
  cl_icd_dispatch agent;
  cl_icd_dispatch upper; ///< the agent's with the upper half's hooks
  /// What the loader gets: the upper half's with the hooks for autotuning.
  cl_icd_dispatch application;
  cl_uint count; ///< entries filled in; the loader knows what to do with others
};

/// The tables of this process, all null before `copyLoaderTable`.
LayerTable &layerTable();

/// Takes over the `count` entries of `loaderTable`, or as many as our headers
/// know.
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

/// The runtime's calls, past the agent and the layer.
inline const cl_icd_dispatch &runtime() { return layerTable().runtime; }

/// The agent's calls, past the upper half.
inline const cl_icd_dispatch &agent() { return layerTable().agent; }

/// The upper half's calls, past the hooks for autotuning.
inline const cl_icd_dispatch &upperHalf() { return layerTable().upper; }

/// The calls as the application makes them.
inline const cl_icd_dispatch &application() { return layerTable().application; }

} // namespace corvane::layer
