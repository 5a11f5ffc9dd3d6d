// What differs by platform: where this library lies and how to load another.

#pragma once

#include <filesystem>
#include <string>

namespace corvane::layer {

/// The folder of the file that this code was loaded from; empty if the system
/// does not tell.
std::filesystem::path ownFolder();

/// Loads a library for good. Null on failure; then `problem` says in one line
/// without line feed what the system had against `file`.
void *openLibrary(const std::filesystem::path &file, std::string &problem);

/// The exported function of that name; null if there is none.
void *findExport(void *library, const char *name);

} // namespace corvane::layer
