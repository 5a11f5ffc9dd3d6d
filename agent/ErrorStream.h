// Declares the process's standard error as a stream, and what is told on it.

#pragma once

#include "llvm/ADT/StringRef.h"
#include "llvm/Support/raw_ostream.h"

#include <string>

namespace corvane {

/// The process's standard error, unbuffered: each text that is written is one
/// write of bytes as they are, and is lost if it would go astray or wait for
/// ever (see platform::useStandardError). Any thread.
///
/// A stream of our own and not LLVM's errs(), which waits for a full pipe for
/// ever and dies while the process ends: the application may still call a hook
/// then.
llvm::raw_ostream &errorStream();

/// Makes that stream but leaves the descriptor as it is. Once this has been
/// called, no use of the stream waits for another thread's.
void prepareErrorStream();

/// Writes \p line on the error stream in one piece, so that the lines of two
/// threads never mix.
void writeError(llvm::StringRef line);

/// \p text with "?" for each control character, so that it is one line and
/// moves no terminal's cursor, whatever it repeats of files and settings.
std::string inOneLine(std::string text);

/// Writes one line on the error stream: \p path is not a regular file and is
/// not used. Once a process for each path; from any thread, holding any lock.
void reportRefusedFile(const std::string &path);

} // namespace corvane
