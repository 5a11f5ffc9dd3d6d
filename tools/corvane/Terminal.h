// The terminal that standard error may be, by system.

#pragma once

#include "llvm/ADT/StringRef.h"

#include <functional>
#include <optional>
#include <thread>

namespace corvane {

struct TerminalSize {
  unsigned rows = 0;
  unsigned columns = 0;
};

/// None if standard error is no terminal, or one that knows no escape
/// sequences.
std::optional<TerminalSize> errorTerminal();

/// Writes to standard error in one piece.
void writeToTerminal(llvm::StringRef bytes);

/// Starts a thread that gets no signals of the process.
std::thread startThread(std::function<void()> work);

} // namespace corvane
