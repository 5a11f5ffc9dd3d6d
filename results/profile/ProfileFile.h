// Writes profiles as text, and reads them back.

#pragma once

#include "results/profile/Profile.h"

#include "llvm/ADT/StringRef.h"
#include "llvm/Support/Error.h"

#include <cstdint>
#include <string>

namespace corvane {

/// In bytes; more than any profile has, and the most that readers take.
inline constexpr std::uint64_t profileSizeLimit = std::uint64_t(256) << 20;

/// How files and tables call an agreement.
const char *agreementText(Agreement check);

/// \p profile as the contents of a file. The same profile gives the same bytes.
std::string profileText(const Profile &profile);

/// Reads a profile that anyone may have edited. Fields of unknown names are
/// ignored; everything else must be right, or the error says in one line what
/// is not. Of entries for the same launch the first one counts.
llvm::Expected<Profile> readProfile(llvm::StringRef text);

} // namespace corvane
