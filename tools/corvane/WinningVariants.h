// The text of the generated variants that a profile names.

#pragma once

#include "results/profile/Profile.h"

#include <string>

namespace corvane {

/// The folder in a tuned folder that has what was generated while programs were
/// tuned.
std::string generatedFolder(const std::string &folder);

/// The folder in a tuned folder that has the variants for programs that run.
std::string variantsFolder(const std::string &folder);

/// Takes from what was generated the variants that \p profile names, and puts
/// them where `corvane run` finds them, one file for each program. Files of
/// programs that need none are removed. Says which could not be written.
void writeWinningVariants(const std::string &folder, const Profile &profile);

} // namespace corvane
