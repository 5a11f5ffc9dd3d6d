// Runs the generator as a child of this process.

#pragma once

#include "llvm/ADT/StringRef.h"

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace corvane {

/// What a child may use before it is ended.
struct ChildLimits {
  unsigned processorSeconds = 2;
  /// Longer than the processor time: the machine may be busy with other work.
  std::chrono::milliseconds time = std::chrono::seconds(10);
  std::size_t memory = std::size_t{1} << 30; ///< address space; 0: no limit
  std::size_t output = std::size_t{4} << 20; ///< bytes
};

/// How a run went.
struct ChildRun {
  enum class End {
    Done,       ///< by itself, with success as far as that can be told
    Failed,     ///< by itself, or by a limit to memory or processor time
    NotStarted, ///< it never ran
    TooSlow,
    TooMuchOutput,
  };
  End end = End::NotStarted;
  std::string output; ///< if Done
  std::string why;    ///< in words, if not Done
};

/// Runs the program \p words, a full path and arguments, with \p input on its
/// standard input, and waits for its end. It inherits the current folder and
/// nothing else: no descriptor, no variable, no signal's setting. Whatever it
/// does, this returns; what is left of it by then is ended.
ChildRun runChild(const std::vector<std::string> &words, llvm::StringRef input,
                  const ChildLimits &limits);

} // namespace corvane
