// Process detach where the loader tells every library.

#include "agent/entry/ProcessDetach.h"

#include "results/Flush.h"

#include <windows.h>

void corvane::watchForProcessDetach() {}

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_DETACH)
    corvane::flushAutotuneResults();
  return TRUE;
}
