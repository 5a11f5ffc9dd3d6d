// Letters outside ASCII as programs with char get them.

#pragma once

#include <string>

namespace corvane::test {

/// \p text in the character set of the system, as a variable of the environment
/// has it; empty if it lacks one of the letters.
std::string narrow(const std::wstring &text);

} // namespace corvane::test
