// Leads each call of the application to the layer or, in a child, to the
// runtime.

#include "layer/ForkedChildren.h"

#include "base/ForkedChild.h"

using namespace corvane::layer;

// The layer's calls, at the entries that it has replaced.
static cl_icd_dispatch layerCalls;

namespace {
template <auto entry> struct ParentOnly;

template <typename Result, typename... Arguments,
          Result (CL_API_CALL *cl_icd_dispatch::*entry)(Arguments...)>
struct ParentOnly<entry> {
  static Result CL_API_CALL inParentOnly(Arguments... arguments) {
    if (corvane::inForkedChild())
      return (runtime().*entry)(arguments...);
    return (layerCalls.*entry)(arguments...);
  }

  static void putInto(LayerTable &table) {
    auto &call = table.application.*entry;
    if (call == table.agent.*entry || call == table.runtime.*entry)
      return;
    layerCalls.*entry = call;
    call = inParentOnly;
  }
};

// An entry that this system lacks is null and is not replaced.
template <void *cl_icd_dispatch::*entry> struct ParentOnly<entry> {
  static void putInto(LayerTable &) {}
};
} // namespace

void corvane::layer::passChildrenThrough(LayerTable &table) {
#define ENTRY(name) ParentOnly<&cl_icd_dispatch::name>::putInto(table);
#include "layer/TableEntries.def"
}
