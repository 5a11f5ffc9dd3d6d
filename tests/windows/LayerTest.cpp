// Tests of the layer, loaded as a loader on Windows would load it.

#include "agent/DispatchTable.h"
#include "base/ProgramHash.h"
#include "results/profile/ProfileFile.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/FakeRuntime.h"
#include "tests/support/FakeTable.h"
#include "tests/support/TempFolder.h"
#include "tests/windows/Library.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <CL/cl_layer.h>

#include <cstring>
#include <filesystem>
#include <string>

#include <windows.h>

using namespace corvane;
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

// A folder that was tuned elsewhere: a profile, and the text of one variant.
static void writeTunedFolder(const TempFolder &folder,
                             const std::string &source) {
  const std::string hash = programHashText("source", "", source);
  std::filesystem::create_directory(folder.path() / "variants");
  EXPECT_TRUE(folder.write("variants/" + hash + ".cl",
                           "// Variants of kernels, format 1\n"
                           "// variant 0 4 k_coarsed_g0S4\n"
                           "// program 4\ntext"));
  Profile profile;
  profile.devices = {{"device 1", "maker", "1.0"}};
  profile.programs = {hash};
  ProfileEntry entry;
  entry.kernel = "k";
  entry.sizes.dimensions = 1;
  entry.sizes.global = {64, 0, 0};
  entry.sizes.local = {4, 0, 0};
  entry.use = "g0S4";
  entry.versions[""] = {10.0, 7, Agreement::Equal};
  entry.versions["g0S4"] = {5.0, 7, Agreement::Equal};
  profile.entries = {entry};
  EXPECT_TRUE(folder.write("profile.json", profileText(profile)));
}

TEST(LayerDll, RunsTheGeneratedVariantsOfATunedFolderWithoutAGenerator) {
  FakeRuntime runtime;
  const TempFolder folder;
  const std::string source = "kernel void k() {}";
  writeTunedFolder(folder, source);
  const EnvGuard profile("CORVANE_PROFILE", folder.text());
  const EnvGuard variants("CORVANE_VARIANTS", folder.file("variants"));
  for (const char *name : {"CorvaneAg.dll", "CorvaneLayer.dll"})
    std::filesystem::copy_file(builtFolder() / name, folder.path() / name);
  HMODULE layer = LoadLibraryW((folder.path() / "CorvaneLayer.dll").c_str());
  ASSERT_TRUE(layer) << GetLastError();
  const auto init = findFunction<decltype(&clInitLayer)>(
      reinterpret_cast<void *>(layer), "clInitLayer");

  cl_icd_dispatch below{};
  const auto entries = entriesOf(runtime.ownTable());
  std::memcpy(&below, entries.data(), entries.size() * sizeof entries[0]);
  cl_uint count = 0;
  const cl_icd_dispatch *table = nullptr;
  ASSERT_EQ(init(sizeof below / sizeof(void *), &below, &count, &table),
            CL_SUCCESS);

  runtime.sourceMakes().source(source).kernel("k");
  runtime.sourceMakes().source(source).kernel("k").kernel("k_coarsed_g0S4");
  const char *text = source.c_str();
  cl_program program = table->clCreateProgramWithSource(
      runtime.context(), 1, &text, nullptr, nullptr);
  ASSERT_EQ(table->clBuildProgram(program, 0, nullptr, "", nullptr, nullptr),
            CL_SUCCESS);
  cl_kernel kernel = table->clCreateKernel(program, "k", nullptr);
  const size_t global = 64;
  const size_t local = 4;
  runtime.forgetTranscript();
  EXPECT_EQ(table->clEnqueueNDRangeKernel(runtime.queue(), kernel, 1, nullptr,
                                          &global, &local, 0, nullptr, nullptr),
            CL_SUCCESS);
  EXPECT_THAT(runtime.transcript({"clEnqueueNDRangeKernel"}),
              testing::ElementsAre(testing::HasSubstr(
                  "kernel k_coarsed_g0S4, 1, null, [16], [4]")));
  EXPECT_EQ(table->clReleaseKernel(kernel), CL_SUCCESS);
  EXPECT_EQ(table->clReleaseProgram(program), CL_SUCCESS);
  EXPECT_THAT(runtime.alive("program"), testing::IsEmpty());
}
