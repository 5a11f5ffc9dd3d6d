// Makes the install location fit for a page's address.

#pragma once

#include <string>

namespace corvane {

/// \p location with "/" for each backslash, without one double quote at either
/// end.
std::string normalizedLocation(std::string location);

} // namespace corvane
