// Loads DLLs in programs that cannot run without them.

#pragma once

namespace corvane::test {

/// Loads a DLL by name or path, or ends the process with a line that says so.
void *loadOrEnd(const char *name);

/// Undoes one loadOrEnd.
void freeLibrary(void *library);

/// The exported function of that name; null if there is none.
void *findExport(void *library, const char *name);

template <typename Function>
Function findFunction(void *library, const char *name) {
  return reinterpret_cast<Function>(findExport(library, name));
}

} // namespace corvane::test
