// Declares the diagnostic log, a text in memory until the process ends.

#pragma once

#include "agent/Environment.h"

#include "llvm/Support/raw_ostream.h"

#include <atomic>
#include <string>

namespace debug {

/// The text that a string_ostream writes into; a base, so that it is there
/// before the stream is.
struct OwnedText {
  std::string text;
};

/// A text stream that owns its text. Any thread may write at any time, also
/// while another one ends the process: without a lock, so that no thread that
/// was stopped in the middle can keep the end waiting.
class string_ostream : private OwnedText, public llvm::raw_string_ostream {
public:
  string_ostream() : llvm::raw_string_ostream(OwnedText::text) {}

  /// Appends the text to the file that CORVANE_DUMP_LOG names, if it names one
  /// that can be opened, tells its length on the standard error stream, and
  /// forgets the text. On one thread at a time.
  void dump();

private:
  struct Piece;

  void write_impl(const char *data, std::size_t size) override;
  std::string takeText();

  /// What was written and not taken yet, the latest piece first. A piece is
  /// complete, and never changes again, before it is in the list.
  std::atomic<Piece *> latest{nullptr};
};

} // namespace debug

namespace corvane {

namespace detail {
debug::string_ostream &keptLog();
} // namespace detail

/// The diagnostic log if CORVANE_DUMP_LOG is defined now, else null. Looks the
/// variable up, so ask once and keep the answer over one launch. Any thread and
/// best without the agent lock; hold that while writing a line in several
/// pieces.
llvm::raw_ostream *lookUpDebugLog();

/// The same, with a stream that drops what it gets in place of null.
llvm::raw_ostream &debugLog();

} // namespace corvane
