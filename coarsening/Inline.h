// Puts functions that have barriers into their callers.
#pragma once

#include "coarsening/FunctionFacts.h"

#include <optional>
#include <string>

namespace corvane::coarsening {

/// The program's text with the bodies of such functions in place of calls,
/// where that can be done: the call is a statement, or what a statement
/// assigns, declares or returns; the function returns at its end only and calls
/// no other function with a barrier; and no name means something else in the
/// caller. Nothing where there is no such call. Functions that call others
/// become such that can be put in themselves, so ask again for the result.
std::optional<std::string> inlineBarriers(const clang::ASTContext &context);

} // namespace corvane::coarsening
