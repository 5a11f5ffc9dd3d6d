// Writes a clause for each condition of a spec.

#include "results/overview/VariantWords.h"

#include "variants/ArgumentConditions.h"
#include "variants/CoarseRequest.h"
#include "variants/VariantName.h"

#include "llvm/ADT/StringExtras.h"

#include <vector>

using namespace corvane;
using llvm::CoarseMode;
using llvm::CoarseRequest;

using Texts = std::vector<std::string>;

static std::string unitsOf(const CoarseRequest &request) {
  static const char *const names[] = {"columns", "rows", "layers"};
  return request.dim < 3 ? names[request.dim]
                         : "of dimension " + std::to_string(request.dim);
}

static void describe(const CoarseRequest &request, Texts &work, Texts &asides) {
  const std::uint64_t factor =
      std::uint64_t(request.factor) * request.extraFactor;
  if (factor > 1)
    work.push_back(std::to_string(factor) + " " + unitsOf(request));
  switch (request.mode) {
  case CoarseMode::Local:
    if (factor > 1)
      asides.push_back("work-groups shrink");
    break;
  case CoarseMode::Global:
    if (factor <= 1)
      asides.push_back("whole work-groups only");
    break;
  case CoarseMode::Coarse:
    asides.push_back("the last work-group may be padded");
    break;
  }
}

static void describe(const llvm::DivisibleArgs &arguments, Texts &asides) {
  for (const auto &[index, divisor] : arguments.divisors)
    asides.push_back("argument " + std::to_string(index) + " a multiple of " +
                     std::to_string(divisor));
}

static void describe(const llvm::RestrictArgs &arguments, Texts &asides) {
  Texts indices;
  for (std::uint32_t index : arguments.indices)
    indices.push_back(std::to_string(index));
  asides.push_back("marked r" + llvm::join(indices, "S"));
}

std::string corvane::variantWords(llvm::StringRef spec) {
  ConditionSet conditions;
  if (!parseSpec(spec, conditions))
    return {};
  Texts work, asides;
  for (const llvm::Transform &condition : conditions)
    switch (condition.kind) {
    case llvm::Transform::CoarseKind:
      describe(static_cast<const CoarseRequest &>(condition), work, asides);
      break;
    case llvm::Transform::DivisibleKind:
      describe(static_cast<const llvm::DivisibleArgs &>(condition), asides);
      break;
    case llvm::Transform::RestrictKind:
      describe(static_cast<const llvm::RestrictArgs &>(condition), asides);
      break;
    default:
      break;
    }
  std::string words = work.empty()
                          ? "work-items do what they did"
                          : "each work-item does " + llvm::join(work, " by ");
  for (const std::string &aside : asides)
    words += "; " + aside;
  return words;
}
