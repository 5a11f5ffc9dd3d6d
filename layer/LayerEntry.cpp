// The two calls by which an OpenCL loader knows and starts the layer.

#include "base/ForkedChild.h"
#include "base/Platform.h"
#include "base/Settings.h"
#include "layer/AgentLibrary.h"
#include "layer/Answer.h"
#include "layer/CompanionSettings.h"
#include "layer/ForkedChildren.h"
#include "layer/LayerAgent.h"
#include "layer/LayerHooks.h"
#include "layer/LayerTable.h"
#include "layer/TuningMode.h"

#include <CL/cl_layer.h>

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <string>

using namespace corvane::layer;

cl_int CL_API_CALL clGetLayerInfo(cl_layer_info paramName,
                                  size_t paramValueSize, void *paramValue,
                                  size_t *paramValueSizeRet) {
  static constexpr cl_layer_api_version version = CL_LAYER_API_VERSION_100;
  static constexpr char name[] = "CorvaneLayer";
  const Answer answer{paramValueSize, paramValue, paramValueSizeRet};
  switch (paramName) {
  case CL_LAYER_API_VERSION:
    return answer.give(&version, sizeof(version));
  case CL_LAYER_NAME:
    return answer.give(name, sizeof(name));
  default:
    return CL_INVALID_VALUE;
  }
}

/// Whether the agent, which has started, found its results folder usable: it
/// autotunes only if it could open its log there.
static bool canAutotune() {
  using namespace corvane;
  const char *const folder = std::getenv(variable::autotune);
  return folder && platform::openRegularFile(std::string(folder) + "/.auto.csv",
                                             platform::FileUse::AddOnly)
                       .file;
}

/// Lets the agent install its entries in `table`, and says what kept it from
/// doing so; empty when all went well.
static std::string startAgent(LayerTable &table) {
  std::string problem;
  // The agent may move a variable once it runs.
  const TuningMode mode = tuningMode();
  (void)companionSettings();
  const AgentLibrary library = loadAgentLibrary(problem);
  if (!problem.empty())
    return problem;

  corvane::watchForks();
  installLowerHooks(table.agent);
  LayerAgent &agent = layerAgent(table);
  const cl_int status = library.onLoad(&agent);
  agent.acceptsTable = false;
  if (status != CL_SUCCESS)
    return "the agent library refused to start with status " +
           std::to_string(status) +
           "; check that layer and agent library are of one build";
  table.upper = table.agent;
  installUpperHooks(table.upper);
  table.application = table.upper;
  // An agent in normal mode gets all launches.
  if (mode != TuningMode::Autotune || canAutotune())
    installTuningHooks(table.application, mode);
  passChildrenThrough(table);
  return problem;
}

/// Makes `table` ready for a loader with a table of `count` entries, and says
/// what is in the way of that; empty when the table may go to the loader.
static std::string prepareTable(LayerTable &table,
                                const cl_icd_dispatch &loaderTable,
                                cl_uint count) {
  static std::mutex lock;
  static bool started = false;
  const std::lock_guard<std::mutex> guard(lock);
  if (count < agentEntries)
    return "the OpenCL loader offers " + std::to_string(count) +
           " entry points where " + std::to_string(agentEntries) +
           " are needed; install a newer loader";
  // A loader that is opened once more gets the same service. But one that has
  // this layer in its table already would call it twice.
  if (started && leadsToUs(table, loaderTable, count))
    return "it was started before in this process; name it once only";
  if (started)
    return {};

  copyLoaderTable(table, loaderTable, count);
  std::string problem = startAgent(table);
  if (!problem.empty())
    return problem;
  // The loader gets a table of ours now, and the runtime callbacks.
  corvane::platform::keepLibraryOf(&started);
  keepRuntimeLibraries(table);
  started = true;
  return problem;
}

cl_int CL_API_CALL clInitLayer(cl_uint numEntries,
                               const cl_icd_dispatch *targetDispatch,
                               cl_uint *numEntriesRet,
                               const cl_icd_dispatch **layerDispatchRet) {
  if (!targetDispatch || !numEntriesRet || !layerDispatchRet)
    return CL_INVALID_VALUE;

  LayerTable &table = layerTable();
  const std::string problem = prepareTable(table, *targetDispatch, numEntries);
  if (problem.empty()) {
    *numEntriesRet = std::min(table.count, numEntries);
    *layerDispatchRet = &table.application;
    return CL_SUCCESS;
  }

  // The loader's own table, given back, leaves the application as it was.
  corvane::platform::writeStandardError("CorvaneLayer: " + problem +
                                        ". OpenCL runs on without it.\n");
  *numEntriesRet = numEntries;
  *layerDispatchRet = targetDispatch;
  return CL_SUCCESS;
}
