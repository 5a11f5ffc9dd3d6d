// The two channels of text: the error stream and the diagnostic log.

#pragma once

#include "agent/Environment.h"

#include "llvm/ADT/StringRef.h"
#include "llvm/Support/raw_ostream.h"

#include <mutex>
#include <string>

namespace debug {

/// The text that a string_ostream writes into; a base, so that it is there
/// before the stream is.
struct OwnedText {
  std::string text;
};

/// A text stream that owns its text.
class string_ostream : private OwnedText, public llvm::raw_string_ostream {
public:
  string_ostream() : llvm::raw_string_ostream(OwnedText::text) {}

  /// Appends the text to the file that CORVANE_DUMP_LOG names, if it names one
  /// that can be opened, tells its length on the standard error stream, and
  /// forgets the text.
  void dump();

private:
  // Text may come from one thread while another one ends the process.
  void write_impl(const char *data, std::size_t size) override;
  std::string takeText();

  std::mutex lock;
};

} // namespace debug

namespace corvane {

namespace detail {
debug::string_ostream &keptLog();
} // namespace detail

/// The process's standard error, unbuffered; bytes are written as they are.
///
/// A stream of our own and not LLVM's errs(), which dies while the process
/// ends: the application may still call a hook then.
llvm::raw_fd_ostream &errorStream();

/// Makes that stream but leaves the descriptor as it is. Once this has been
/// called, no use of the stream waits for another thread's.
void prepareErrorStream();

/// Writes \p line on the error stream in one piece, so that the lines of two
/// threads never mix. A failure is forgotten: LLVM would end the process at
/// exit for an error that nobody looked at.
void writeError(llvm::StringRef line);

/// The diagnostic log if CORVANE_DUMP_LOG is defined now, else null. Looks the
/// variable up, so ask once and keep the answer over one launch. Any thread and
/// best without the agent lock; hold that while writing.
llvm::raw_ostream *lookUpDebugLog();

/// The same, with a stream that drops what it gets in place of null.
llvm::raw_ostream &debugLog();

} // namespace corvane
