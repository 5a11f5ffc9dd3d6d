// Tests of libraries that are closed while the runtime still has a callback or
// a table of theirs.

#include "tests/support/EnvGuard.h"
#include "tests/support/FakeRuntime.h"
#include "tests/support/FakeTable.h"
#include "tests/support/LeakCheck.h"
#include "tests/support/LoadedAgent.h"
#include "tests/support/TempFolder.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <CL/cl_layer.h>

#include <cstring>
#include <filesystem>
#include <vector>

#include <dlfcn.h>

using namespace corvane;
using namespace corvane::test;

namespace {
/// Copies of agent and layer, which the test opens and closes.
class ClosedLibrary : public testing::Test {
protected:
  ClosedLibrary() {
    for (const std::filesystem::path file : {AGENT_FILE, LAYER_FILE})
      std::filesystem::copy_file(file, folder.path() / file.filename());
  }

  std::string copyOf(const char *file) const {
    return folder.file(std::filesystem::path(file).filename().string());
  }

  void open(const char *file) {
    library = dlopen(copyOf(file).c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
  }
  template <typename Function> Function *find(const char *name) const {
    return reinterpret_cast<Function *>(dlsym(library, name));
  }
  void close() { EXPECT_EQ(dlclose(library), 0); }

  bool isMapped(const char *file) const {
    void *found = dlopen(copyOf(file).c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (found)
      dlclose(found);
    return found;
  }

  /// An autotuned launch of a kernel and its variant, whose callbacks wait.
  void launch(const DispatchTable &cl) {
    runtime.holdCallbacks();
    cl_program program =
        runtime.addProgram().kernel("k").kernel("k_coarsed_g0S4");
    EXPECT_EQ(cl.clBuildProgram(program, 0, nullptr, nullptr, nullptr, nullptr),
              CL_SUCCESS);
    cl_kernel kernel = cl.clCreateKernel(program, "k", nullptr);
    const size_t global = 16;
    EXPECT_EQ(cl.clEnqueueNDRangeKernel(runtime.queue(), kernel, 1, nullptr,
                                        &global, nullptr, 0, nullptr, nullptr),
              CL_SUCCESS);
    EXPECT_EQ(cl.clReleaseKernel(kernel), CL_SUCCESS);
  }

  std::string rows() const { return folder.read("out/.auto.csv"); }

  FakeRuntime runtime;
  const TempFolder folder;
  const EnvGuard output{"CORVANE_AUTOTUNE", folder.file("out")};
  void *library = nullptr;
};

const char expectedRows[] = "kernel,x_global,y_global,z_global,x_local,y_local,"
                            "z_local,coarsed_kernel,time\n"
                            "k,16,,,0,,,g0S4,1.000\n"
                            "k,16,,,0,,,baseline,1.000\n";
} // namespace

TEST_F(ClosedLibrary, OfTheAgentStaysForItsCallbacksAndHooks) {
  open(AGENT_FILE);
  const auto unload = find<decltype(clAgent_OnUnload)>("clAgent_OnUnload");
  EXPECT_EQ(find<decltype(clAgent_OnLoad)>("clAgent_OnLoad")(
                runtime.agent().operations()),
            CL_SUCCESS);
  launch(runtime.agent().current);
  close();
  EXPECT_TRUE(isMapped(AGENT_FILE));
  EXPECT_EQ(runtime.fireCallbacks(), 2U);
  EXPECT_EQ(rows(), expectedRows);
  unload(runtime.agent().operations());
}

TEST_F(ClosedLibrary, OfTheAgentGoesWhenTheRuntimeHasNothingOfIt) {
  leaksAreIgnored = true; // what the library keeps until the process ends
  open(AGENT_FILE);
  runtime.answer("SetICDDispatchTable", CL_INVALID_OPERATION);
  EXPECT_EQ(find<decltype(clAgent_OnLoad)>("clAgent_OnLoad")(
                runtime.agent().operations()),
            CL_INVALID_OPERATION);
  close();
  EXPECT_FALSE(isMapped(AGENT_FILE));
}

TEST_F(ClosedLibrary, OfTheLayerStaysForItsTableAndTheAgentsCallbacks) {
  open(LAYER_FILE);
  std::vector<const void *> entries;
  for (const void *entry : entriesOf(runtime.ownTable()))
    entries.push_back(entry);
  cl_uint count = 0;
  const cl_icd_dispatch *table = nullptr;
  ASSERT_EQ(find<decltype(clInitLayer)>("clInitLayer")(
                static_cast<cl_uint>(entries.size()),
                reinterpret_cast<const cl_icd_dispatch *>(entries.data()),
                &count, &table),
            CL_SUCCESS);
  DispatchTable cl{};
  std::memcpy(&cl, table, sizeof cl);
  launch(cl);
  close();
  EXPECT_TRUE(isMapped(LAYER_FILE));
  EXPECT_EQ(runtime.fireCallbacks(), 2U);
  EXPECT_EQ(rows(), expectedRows);

  open(AGENT_FILE);
  find<decltype(clAgent_OnUnload)>("clAgent_OnUnload")(nullptr);
  close();
}

TEST_F(ClosedLibrary, OfTheLayerGoesWhenTheLoaderHasNothingOfIt) {
  open(LAYER_FILE);
  const cl_icd_dispatch tooSmall{};
  cl_uint count = 0;
  const cl_icd_dispatch *table = nullptr;
  testing::internal::CaptureStderr();
  EXPECT_EQ(
      find<decltype(clInitLayer)>("clInitLayer")(1, &tooSmall, &count, &table),
      CL_SUCCESS);
  EXPECT_NE(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(table, &tooSmall);
  close();
  EXPECT_FALSE(isMapped(LAYER_FILE));
}
