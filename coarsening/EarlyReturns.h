// Kernels that do their work in a branch and return there.
#pragma once

#include "coarsening/ClangHeaders.h"

#include <optional>
#include <string>

namespace corvane::coarsening {

/// The program's text with `if (c) { work; return; } rest` written as
/// `if (c) { work; } else { rest }` in the outermost scope of kernels: then it
/// is one branch, that lanes usually take together. Nothing where there is no
/// such statement.
std::optional<std::string>
withoutEarlyReturns(const clang::ASTContext &context);

} // namespace corvane::coarsening
