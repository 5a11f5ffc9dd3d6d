// The ICD dispatch table as a type: 119 entry points under their own names.

#pragma once

#include <CL/cl_icd.h>

#include <cstddef>

namespace corvane {

/// The table that a runtime hands out and takes back. Entries that the runtime
/// does not offer are null.
struct DispatchTable {
#define ENTRY(index, name) decltype(cl_icd_dispatch::name) name;
#include "agent/DispatchEntries.def"
};

/// Bytes of the table, as the runtime's table operations count them.
inline constexpr std::size_t dispatchTableSize = 952;

static_assert(sizeof(DispatchTable) == dispatchTableSize,
              "the table has 119 entries of 8 bytes");
#define ENTRY(index, name)                                                     \
  static_assert(offsetof(DispatchTable, name) == (index) * sizeof(void *),     \
                #name " is out of place");
#include "agent/DispatchEntries.def"

} // namespace corvane
