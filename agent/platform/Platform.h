// All that differs between operating systems, behind one header.

#pragma once

#include <cstdio>
#include <string>

namespace corvane::platform {

/// Defines an environment variable; failures are ignored. An empty value
/// removes the variable where the system does not tell the two apart.
void defineVariable(const char *name, const char *value);
void removeVariable(const char *name);

/// Creates one directory level. Returns true also if it existed already.
bool createDirectory(const char *path);

/// What stands between a directory and a name that createDirectory gets.
extern const char *const directorySeparator;

/// The name of a file as the file system tells it from others: two files whose
/// names are the same here are one file there.
std::string comparableFileName(std::string name);

/// Drops what \p file, open for writing and without a buffer, holds behind its
/// first \p length bytes; failures are ignored.
void cutFile(std::FILE *file, long length);

/// Whether memory of the process may lie at \p address. Needs no right to read
/// there.
bool isOccupied(const void *address);

/// Makes the standard error stream write bytes as they are.
void makeErrorStreamBinary();

} // namespace corvane::platform
