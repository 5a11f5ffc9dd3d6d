// Checks what the agent says about failing calls.

#pragma once

#include <CL/cl.h>

#include <set>
#include <string>
#include <utility>

namespace corvane::test {

/// Entries of the runtime's that have failed, with their codes.
using Failures = std::set<std::pair<std::string, cl_int>>;

/// Expects that every line of \p text is one that the agent may write if only
/// those calls have failed, or is \p another.
void expectReportsOf(const Failures &failures, const std::string &text,
                     const std::string &another = {});

} // namespace corvane::test
