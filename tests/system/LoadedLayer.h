// The layer in this process, under a loader that the test plays.

#pragma once

#include <CL/cl_layer.h>

#include <string>
#include <vector>

namespace corvane::test {

/// Loads a layer library and calls its two exports as a loader would, which
/// never closes it again.
class LoadedLayer {
public:
  /// A layer that cannot be loaded fails the test.
  explicit LoadedLayer(const std::string &file);

  pfn_clGetLayerInfo getLayerInfo = nullptr;
  pfn_clInitLayer initLayer = nullptr;

  /// What an initialisation gave to the loader.
  struct Answer {
    cl_int status = CL_SUCCESS;
    cl_uint count = 0;
    const cl_icd_dispatch *table = nullptr;
    std::string said; ///< on the standard error stream

    void *entry(size_t index) const;
  };

  Answer init(const std::vector<void *> &loaderTable) const;
};

/// A table whose entry i leads to an address that belongs to i alone. No entry
/// may be called.
std::vector<void *> loaderTableOf(size_t entries);

/// True for the entries that have a hook of the layer's lower half, and for
/// those that have one of its upper half, in a process that tunes nothing.
bool isLowerHook(size_t index);
bool isUpperHook(size_t index);

/// True for the lower half's entries that the application's calls do not reach.
bool isForTheAgentAlone(size_t index);

} // namespace corvane::test
