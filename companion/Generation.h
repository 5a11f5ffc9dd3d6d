// Generates variants of programs, or finds those that were generated before.

#pragma once

#include "companion/BoundedFolder.h"
#include "companion/GeneratorRun.h"
#include "companion/VariantsFile.h"

#include "llvm/ADT/StringRef.h"

#include <mutex>
#include <optional>
#include <string>

namespace corvane {

/// What came of a program.
struct Generated {
  /// A list of variants, or of none with the reason; none if the generator
  /// failed.
  std::optional<VariantsFile> file;
  std::string failure; ///< of the generator, in words
  /// The first failure of this object: one that people are to be told.
  bool isFirstFailure = false;
};

/// Has the generator make the variants of programs. What it has made, and that
/// it can make none, is kept in a cache under a hash of all that it depends on.
///
/// A generator that cannot be run, or has failed several times, is not run
/// again. Any thread; threads do not wait for each other.
class Generation {
public:
  /// \p generator is the path of corvane-coarsen or a program like it;
  /// \p cache a folder, or empty for none.
  Generation(std::string generator, const std::string &cache,
             const ChildLimits &childLimits);

  /// The variants of a program for \p device, which is text of any form that
  /// tells it from others. \p options as clBuildProgram takes them.
  Generated generate(llvm::StringRef source, llvm::StringRef options,
                     llvm::StringRef device);

private:
  std::string keyOf(llvm::StringRef source, llvm::StringRef options,
                    llvm::StringRef device) const;
  Generated run(llvm::StringRef source, llvm::StringRef options);
  Generated failed(std::string why, bool isHopeless);

  const std::string tool;
  const ChildLimits limits;
  const BoundedFolder cache;

  std::mutex lock;
  unsigned failures = 0;   ///< guarded by the lock, as is the next
  std::string lastFailure; ///< if the generator is not run any more
};

/// The limits for the generator in an application's process.
ChildLimits generatorLimits();

} // namespace corvane
