// Tests of the layer, loaded as a loader on Windows would load it.

#include "agent/DispatchTable.h"
#include "tests/support/TempFolder.h"
#include "tests/windows/Library.h"

#include "gtest/gtest.h"

#include <CL/cl_layer.h>

#include <filesystem>
#include <string>

#include <windows.h>

using namespace corvane::test;

static cl_int CL_API_CALL flush(cl_command_queue) { return -77; }
static cl_int CL_API_CALL releaseProgram(cl_program) { return CL_SUCCESS; }

static std::filesystem::path builtFolder() {
  wchar_t path[MAX_PATH] = L"";
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  return std::filesystem::path(path).parent_path();
}

TEST(LayerDll, FindsTheAgentBesideItselfWhateverTheFolderIsCalled) {
  TempFolder folder;
  const std::filesystem::path place =
      folder.path() / L"Program Files \u00fc\u00e9 \u4e2d";
  std::filesystem::create_directory(place);
  for (const char *name : {"CorvaneAg.dll", "CorvaneLayer.dll"})
    std::filesystem::copy_file(builtFolder() / name, place / name);

  HMODULE layer = LoadLibraryW((place / "CorvaneLayer.dll").c_str());
  ASSERT_TRUE(layer) << GetLastError();
  const auto init = findFunction<decltype(&clInitLayer)>(
      reinterpret_cast<void *>(layer), "clInitLayer");
  ASSERT_TRUE(init);

  cl_icd_dispatch below{};
  below.clFlush = flush;
  below.clReleaseProgram = releaseProgram;
  cl_uint count = 0;
  const cl_icd_dispatch *table = nullptr;
  ASSERT_EQ(init(sizeof below / sizeof(void *), &below, &count, &table),
            CL_SUCCESS);

  ASSERT_TRUE(table);
  EXPECT_GE(count, 119U);
  EXPECT_EQ(table->clFlush, flush);
  EXPECT_TRUE(table->clReleaseProgram);
  EXPECT_NE(table->clReleaseProgram, releaseProgram);
  EXPECT_EQ(table->clBuildProgram, nullptr);
}
