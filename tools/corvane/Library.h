// Libraries that are loaded into this process, by system.

#pragma once

#include <string>

namespace corvane {

/// Loads a library and keeps it until the process ends; null if that failed.
void *openLibrary(const std::string &file);

/// Whether a library is loaded already.
bool isLoaded(const std::string &file);

/// Null if the library has none of that name.
void *symbolIn(void *library, const char *name);

/// The file of the library that \p address lies in; empty if it is not known.
std::string fileOfAddress(const void *address);

/// The names by which programs load the OpenCL loader.
extern const char *const loaderFile;

/// Ends this process after so many seconds, where the system can do that.
void endAfter(unsigned seconds);

} // namespace corvane
