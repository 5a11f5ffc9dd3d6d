// Runs the whole of coarsening over short programs.
#pragma once

#include "coarsening/Coarsener.h"

#include <gmock/gmock.h>

namespace corvane::test {

/// The result for `source` with the plans and build options given.
inline coarsening::Coarsened coarsened(llvm::StringRef source,
                                       llvm::StringRef plans,
                                       std::vector<std::string> options = {}) {
  auto wanted = coarsening::parsePlans(plans);
  EXPECT_TRUE(wanted) << plans.str();
  return coarsening::coarsen(source, coarsening::readBuildOptions(options),
                             wanted ? *wanted
                                    : std::vector<coarsening::Plan>());
}

/// The reasons of all refusals, as words; "made" for every variant made.
inline std::vector<std::string> outcomes(const coarsening::Coarsened &result) {
  std::vector<std::string> words(result.variants.size(), "made");
  for (const coarsening::RefusedPlan &plan : result.refusals)
    words.push_back(codeOf(plan.refusal.reason).str());
  if (result.error)
    words.push_back("error: " + *result.error);
  return words;
}

/// The text after the source in the program, with single spaces as white space.
inline std::string variantsOf(const coarsening::Coarsened &result) {
  const size_t begin = result.program.rfind("#ifdef CORVANE_VARIANTS_FIT");
  std::string words;
  for (const char c : result.program.substr(
           begin == std::string::npos ? result.program.size() : begin))
    if (c != ' ' && c != '\n')
      words += c;
    else if (!words.empty() && words.back() != ' ')
      words += ' ';
  return words;
}

} // namespace corvane::test
