// Finds and loads libraries; all that differs by platform.

#pragma once

#include <filesystem>
#include <string>

namespace corvane::layer {

/// The folder of the file that this code was loaded from; empty if the system
/// does not tell.
std::filesystem::path ownFolder();

/// Loads a library that is never closed. Null on failure; then `problem` gets
/// the reason that the system gives, one line without line feed.
void *openLibrary(const std::filesystem::path &file, std::string &problem);

/// The exported function of that name; null if there is none.
void *findExport(void *library, const char *name);

} // namespace corvane::layer
