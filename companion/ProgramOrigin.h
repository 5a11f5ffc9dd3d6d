// What a program was made of, for a binary of it that is made a program again.

#pragma once

#include "companion/BoundedFolder.h"

#include "llvm/ADT/StringRef.h"

#include <optional>
#include <string>

namespace corvane {

/// What a program is known by in every process.
struct ProgramOrigin {
  std::string source;
  std::string options; ///< of its build, as the runtime tells them
};

inline bool operator==(const ProgramOrigin &a, const ProgramOrigin &b) {
  return a.source == b.source && a.options == b.options;
}

/// The origins of binaries, in this user's cache.
class KnownBinaries {
public:
  /// \p folder is where they are kept; empty: nowhere.
  explicit KnownBinaries(const std::string &folder);

  void remember(llvm::StringRef binary, const ProgramOrigin &origin) const;
  std::optional<ProgramOrigin> find(llvm::StringRef binary) const;

private:
  const BoundedFolder folder;
};

} // namespace corvane
