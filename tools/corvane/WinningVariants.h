// The text of the generated variants that a profile names.

#pragma once

#include "companion/VariantsFile.h"
#include "results/profile/Profile.h"

#include <map>
#include <string>

namespace corvane {

/// The folder in a tuned folder that has what was generated while programs were
/// tuned.
std::string generatedFolder(const std::string &folder);

/// The folder in a tuned folder that has the variants for programs that run.
std::string variantsFolder(const std::string &folder);

/// What was generated for programs in several tuned folders.
class GeneratedPrograms {
public:
  /// Reads what was generated in \p folder, or what is left of it: the variants
  /// for programs that run. Says what could not be used.
  void addFolder(const std::string &folder);

  /// Writes all of it as what was generated in \p folder. False, and it has
  /// said why, if it cannot.
  bool write(const std::string &folder) const;

private:
  void addFile(const std::string &file, const std::string &name);

  std::map<std::string, VariantsFile> byName; ///< by the file's name
};

/// Takes from what was generated the variants that \p profile names, and puts
/// them where `corvane run` finds them, one file for each program. Files of
/// programs that need none are removed. Says which could not be written.
void writeWinningVariants(const std::string &folder, const Profile &profile);

} // namespace corvane
