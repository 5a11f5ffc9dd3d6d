// What the agent may say about failing calls.

#pragma once

#include <CL/cl.h>

#include <set>
#include <string>
#include <utility>

namespace corvane::test {

/// Entries of the runtime's that have failed, with their codes.
using Failures = std::set<std::pair<std::string, cl_int>>;

/// Expects that every line of \p text is one that the agent may write when just
/// that has failed, or \p another one.
void expectReportsOf(const Failures &failures, const std::string &text,
                     const std::string &another = {});

} // namespace corvane::test
