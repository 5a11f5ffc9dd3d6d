// Tests of the library's entry point, called as the loader of Windows calls it.

#include "tests/support/FakeRuntime.h"
#include "tests/support/LoadedAgent.h"
#include "tests/support/TempFolder.h"

#include "gtest/gtest.h"

#include <windows.h>

using namespace corvane::test;

using EntryPoint = BOOL(WINAPI *)(HINSTANCE, DWORD, LPVOID);

static BOOL callEntryPoint(DWORD reason) {
  HMODULE module = GetModuleHandleA("CorvaneAg.dll");
  auto *start = reinterpret_cast<char *>(module);
  const void *dos = start;
  const void *headers =
      start + static_cast<const IMAGE_DOS_HEADER *>(dos)->e_lfanew;
  const DWORD offset = static_cast<const IMAGE_NT_HEADERS64 *>(headers)
                           ->OptionalHeader.AddressOfEntryPoint;
  return reinterpret_cast<EntryPoint>(start + offset)(module, reason, nullptr);
}

TEST(EntryPoint, SucceedsForThreadsThatComeAndGo) {
  EXPECT_TRUE(callEntryPoint(DLL_THREAD_ATTACH));
  EXPECT_TRUE(callEntryPoint(DLL_THREAD_DETACH));
}

TEST(EntryPoint, SucceedsForAnUnknownReason) {
  EXPECT_TRUE(callEntryPoint(77));
}

TEST(EntryPoint, FlushesForNoThread) {
  TempFolder folder;
  FakeRuntime runtime;
  LoadedAgent agent(runtime, {{"CORVANE_AUTOTUNE", folder.text()},
                              {"CORVANE_INSTALL_LOCATION", "C:/tools"}});
  callEntryPoint(DLL_THREAD_ATTACH);
  callEntryPoint(DLL_THREAD_DETACH);
  EXPECT_FALSE(folder.has("autotune.csv"));
  agent.unload();
  EXPECT_TRUE(folder.has("autotune.csv"));
}
