// Parses plans, and makes the spec in the name of a plan's variant.
#include "coarsening/Plan.h"

#include "llvm/ADT/STLExtras.h"
#include "llvm/ADT/StringExtras.h"

#include <algorithm>

namespace corvane::coarsening {

unsigned Plan::lanes() const {
  unsigned count = 1;
  for (const Axis &axis : axes)
    count *= axis.factor;
  return count;
}

unsigned Plan::digit(unsigned lane, unsigned axis) const {
  for (unsigned before = 0; before < axis; ++before)
    lane /= axes[before].factor;
  return lane % axes[axis].factor;
}

const Axis *Plan::axisOf(unsigned dim) const {
  const Axis *found =
      llvm::find_if(axes, [dim](const Axis &axis) { return axis.dim == dim; });
  return found == axes.end() ? nullptr : found;
}

static char letterOf(Mode mode) {
  switch (mode) {
  case Mode::Global:
    return 'g';
  case Mode::Padded:
    return 'c';
  case Mode::Local:
    return 'l';
  }
  return '?';
}

static std::optional<Mode> modeOf(char letter) {
  for (const Mode mode : {Mode::Global, Mode::Padded, Mode::Local})
    if (letterOf(mode) == letter)
      return mode;
  return std::nullopt;
}

static llvm::StringRef prefixOf(Mapping mapping) {
  switch (mapping) {
  case Mapping::Best:
    return "";
  case Mapping::Adjacent:
    return "adjacent:";
  case Mapping::Block:
    return "block:";
  case Mapping::Stride:
    return "stride:";
  }
  return "";
}

static std::string itemOf(char letter, unsigned dim, unsigned factor) {
  return (llvm::Twine(letter) + llvm::Twine(dim) + "S" + llvm::Twine(factor))
      .str();
}

std::string Plan::text() const {
  std::string words = method == Method::Sequential ? "seq:" : "";
  words += prefixOf(mapping);
  for (const Axis &axis : axes)
    words += itemOf(letterOf(mode), axis.dim, axis.factor);
  return words;
}

/// Takes one item such as "g0S4" off the front of `text`.
static bool takeItem(llvm::StringRef &text, Plan &plan) {
  const std::optional<Mode> mode =
      text.empty() ? std::nullopt : modeOf(text.front());
  if (!mode || (!plan.axes.empty() && plan.mode != *mode))
    return false;
  text = text.drop_front();
  plan.mode = *mode;
  Axis axis;
  if (text.consumeInteger(10, axis.dim) || !text.consume_front("S") ||
      text.consumeInteger(10, axis.factor))
    return false;
  const bool known = axis.dim < 3 && axis.factor > 1 && axis.factor <= 64;
  const bool ordered = plan.axes.empty() || plan.axes.back().dim < axis.dim;
  plan.axes.push_back(axis);
  return known && ordered && plan.lanes() <= 64;
}

static std::optional<Plan> parsePlan(llvm::StringRef text) {
  Plan plan;
  if (text.consume_front("seq:"))
    plan.method = Method::Sequential;
  for (const Mapping mapping :
       {Mapping::Adjacent, Mapping::Block, Mapping::Stride})
    if (text.consume_front(prefixOf(mapping)))
      plan.mapping = mapping;
  do
    if (!takeItem(text, plan))
      return std::nullopt;
  while (!text.empty());
  if (plan.mode == Mode::Local && plan.mapping != Mapping::Best)
    return std::nullopt;
  return plan;
}

std::optional<std::vector<Plan>> parsePlans(llvm::StringRef text) {
  if (text == "all")
    return allPlans();
  if (text == "default")
    return defaultPlans();
  llvm::SmallVector<llvm::StringRef, 8> words;
  text.split(words, ',');
  std::vector<Plan> plans;
  for (const llvm::StringRef word : words) {
    std::optional<Plan> plan = parsePlan(word);
    if (!plan)
      return std::nullopt;
    plans.push_back(std::move(*plan));
  }
  return plans;
}

static std::vector<Plan> plansOf(llvm::ArrayRef<llvm::StringRef> texts) {
  std::vector<Plan> plans;
  for (const llvm::StringRef text : texts)
    if (std::optional<Plan> plan = parsePlan(text))
      plans.push_back(std::move(*plan));
  return plans;
}

std::vector<Plan> defaultPlans() {
  return plansOf({"g0S4", "l0S4", "g0S8", "block:g0S8", "l1S2", "c0S4"});
}

std::vector<Plan> allPlans() {
  std::vector<Plan> plans;
  for (const llvm::StringRef prefix :
       {"adjacent:g", "block:g", "stride:g", "adjacent:c", "block:c", "l",
        "seq:adjacent:g", "seq:block:g", "seq:block:c", "seq:l"})
    for (const llvm::StringRef range :
         {"0S2", "0S4", "0S8", "1S2", "1S4", "1S8"})
      if (std::optional<Plan> plan = parsePlan((prefix + range).str()))
        plans.push_back(std::move(*plan));
  for (Plan &plan : plansOf({"adjacent:g0S2g1S2", "block:g0S2g1S2",
                             "adjacent:g0S4g1S2", "l0S2l1S2", "c0S2c1S2"}))
    plans.push_back(std::move(plan));
  return plans;
}

/// The item that tells this way of covering the launches from the plainest one.
static llvm::StringRef wayItem(const Plan &plan) {
  if (plan.method == Method::Sequential) {
    switch (plan.mapping) {
    case Mapping::Block:
      return "r2";
    case Mapping::Stride:
      return "r3";
    case Mapping::Best:
    case Mapping::Adjacent:
      return "r1";
    }
  }
  return plan.mapping == Mapping::Stride ? "r0" : "r";
}

std::string specOf(const Plan &plan, bool needsLocalSize, bool plainest) {
  std::string spec = plainest ? "" : wayItem(plan).str();
  for (const Axis &axis : plan.axes) {
    // As an extra factor: it wants a local size, and no multiple of its square.
    const std::string extra = "S1S" + std::to_string(axis.factor);
    // Coarsens nothing, and takes whole work-groups only.
    const std::string wholeGroups = itemOf('g', axis.dim, 1);
    const std::string dim = std::to_string(axis.dim);
    switch (plan.mode) {
    case Mode::Global:
      spec += needsLocalSize ? "g" + dim + extra
                             : itemOf('g', axis.dim, axis.factor);
      break;
    case Mode::Padded:
      spec += wholeGroups + itemOf('c', axis.dim, axis.factor);
      break;
    case Mode::Local:
      spec += "l" + dim + extra + wholeGroups;
      break;
    }
  }
  return spec;
}

} // namespace corvane::coarsening
