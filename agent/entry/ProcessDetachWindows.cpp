// Hooks into the end of the library where the loader calls its entry point.

#include "agent/entry/LoadSteps.h"

#include "agent/ErrorStream.h"
#include "session/Flush.h"

#include <windows.h>

// The loader calls us unasked. But nothing may be made for the first time then:
// a thread that was stopped while making it would have to be waited for.
void corvane::watchForProcessDetach() { prepareErrorStream(); }

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_DETACH)
    corvane::flushAtDetach();
  return TRUE;
}
