// Declares all that differs between operating systems.

#pragma once

#include "llvm/ADT/STLExtras.h"
#include "llvm/ADT/StringRef.h"

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>

namespace corvane::platform {

/// Defines an environment variable; failures are ignored. An empty value
/// removes the variable where the system does not tell the two apart.
void defineVariable(const char *name, const char *value);
void removeVariable(const char *name);

/// Whether an assignment can make a variable that is defined and empty.
extern const bool keepsEmptyVariables;

/// Whether the process has rights that the user who started it has not, as a
/// set-user-id program has.
bool hasForeignRights();

/// Whether the process is ending and its other threads were stopped wherever
/// they were: a lock that one of them held stays locked.
bool otherThreadsAreGone();

/// Creates one directory level. Returns true also if it existed already.
bool createDirectory(const char *path);

enum class NewDirectory {
  Made,
  NameIsTaken, ///< by whatever: nothing was changed
  NotMade,
};
/// Creates one directory level that was not there before.
NewDirectory createNewDirectory(const char *path);

/// The name of this computer in its network; empty if the system does not tell.
std::string hostName();

/// The current folder, absolute; empty if it is unknown or cannot be reached by
/// its name.
std::string currentFolder();

/// The folder in which programs of this user keep what they can make again,
/// absolute; empty if the system does not tell. It may not exist.
std::string userCacheFolder();

/// The separator between a directory and a name in paths for createDirectory.
extern const char *const directorySeparator;

/// The name of a file as the file system tells it from others: two files whose
/// names are the same here are one file there.
std::string comparableFileName(std::string name);

struct CloseFile {
  void operator()(std::FILE *file) const { std::fclose(file); }
};
/// An open file that closes itself.
using FileHandle = std::unique_ptr<std::FILE, CloseFile>;

enum class FileUse {
  Read,
  Replace, ///< empty what is there, or create it
  Append,  ///< add at the end and read, or create it
  AddOnly  ///< add at the end, or create it; needs no right to read
};

struct OpenedFile {
  FileHandle file; ///< null: it could not be opened
  /// Whether it was not opened because the name leads to a symbolic link, a
  /// pipe, a device or anything else that is neither a file nor a folder.
  bool refused = false;
};

/// Opens the regular file \p path, without a buffer of the C library's: each
/// std::fwrite is one write to the system. Never waits, never follows a link in
/// the last part of the path, and changes nothing before it is sure of the
/// file's kind. Programs that the process starts do not inherit the file, and
/// it never takes the number of a standard stream that is closed. Any thread.
OpenedFile openRegularFile(const std::string &path, FileUse use);

/// Writes to a file that openRegularFile has opened for writing. Returns how
/// many bytes the system took, all of \p count unless it failed. A failure
/// raises no signal, not even beyond the process's limit for the size of files.
std::size_t writeBytes(std::FILE *file, const void *bytes, std::size_t count);

/// Drops what \p file, open for writing and without a buffer, holds after its
/// first \p length bytes; failures are ignored.
void cutFile(std::FILE *file, long length);

/// Whether memory of the process may lie at \p address. Needs no right to read
/// there.
bool isOccupied(const void *address);

/// Keeps the library that \p address lies in mapped until the process ends,
/// however often it is closed. Does nothing for other addresses; failures are
/// ignored.
void keepLibraryOf(const void *address);

/// Makes the standard error stream write bytes as they are.
void makeErrorStreamBinary();

/// Remembers what standard error is now, for the functions below.
void rememberStandardError();

/// Calls \p write, unless a byte written on standard error would go astray or
/// might wait for ever:
///  - the host has closed the stream that was remembered and uses its number
///    for something else (a host that keeps the stream under another number has
///    only redirected it, and gets what is written);
///  - the pipe, terminal or socket is not read, and has been full for two
///    seconds. From then on nothing waits until it takes bytes again. One that
///    is set not to block is never waited for.
/// No signal comes of what \p write does. Any thread.
void useStandardError(llvm::function_ref<void()> write);

/// Writes \p bytes on standard error in one piece, if useStandardError lets it.
/// What the system does not take is lost.
void writeStandardError(llvm::StringRef bytes);

} // namespace corvane::platform
