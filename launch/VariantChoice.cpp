// Asks the conditions of variants about a launch.

#include "launch/VariantChoice.h"

#include "agent/AgentState.h"
#include "launch/AppliedProfile.h"
#include "variants/CoarseRequest.h"

#include "llvm/Support/raw_ostream.h"

#include <cstring>

using namespace corvane;

using Reason = Refusal::Reason;

// What refuses the launch whichever variant of the kernel is asked.
static Refusal refusalOfAll(const KernelRecord &record, const Launch &launch) {
  if (record.variants.empty())
    return {Reason::NoVariants};
  if (!record.arguments.areComplete())
    return {Reason::LostArgument};
  if (hasTooManyDimensions(launch))
    return {Reason::TooManyDimensions};
  return {};
}

static ExaminedSizes examineSizes(const llvm::TransformedKernel &conditions,
                                  const LaunchSizes &sizes) {
  ExaminedSizes answer;
  answer.sizes = sizes;
  answer.rejecting = conditions.findRejecting(
      sizes.dimensions, sizes.global.data(), sizes.local.data());
  if (!answer.rejecting)
    (void)prepareLaunch(conditions, sizes.dimensions, sizes.global.data(),
                        sizes.local.data(), answer.range.global.data(),
                        answer.range.local.data());
  return answer;
}

static Refusal refusalOfArguments(const llvm::TransformedKernel &conditions,
                                  const RecordedArguments &arguments) {
  if (!conditions.looksAtArguments())
    return {};
  for (const RecordedArgument &argument : arguments.recorded())
    if (const llvm::Transform *rejecting = conditions.findRejectingArgument(
            argument.index, argument.size, argument.value))
      return {Reason::RejectedArgument, rejecting, &argument};
  return {};
}

static VariantChoice examine(KernelRecord &record, VariantKernel &variant,
                             const Launch &launch, const LaunchSizes &sizes) {
  VariantChoice choice{&variant, {}, {}};
  if (!variant.kernel) {
    choice.refusal = {Reason::NotCreated};
    return choice;
  }
  const llvm::TransformedKernel &conditions = variant.description->conditions;
  if (!variant.examined || !(variant.examined->sizes == sizes))
    variant.examined = examineSizes(conditions, sizes);
  const ExaminedSizes &answer = *variant.examined;
  choice.range = answer.range;
  if (answer.rejecting)
    choice.refusal = {Reason::RejectedSizes, answer.rejecting};
  else if (!launch.globalSize)
    choice.refusal = {Reason::NoGlobalSize};
  else
    choice.refusal = refusalOfArguments(conditions, record.arguments);
  return choice;
}

VariantChoice corvane::examine(KernelRecord &record, VariantKernel &variant,
                               const Launch &launch) {
  if (const Refusal refusal = refusalOfAll(record, launch))
    return {&variant, {}, refusal};
  return ::examine(record, variant, launch, sizesOf(launch));
}

// A variant could be launched with another local size than the zero that a
// runtime refuses.
VariantChoice corvane::chooseVariant(KernelRecord &record,
                                     const Launch &launch) {
  Refusal refusal = refusalOfAll(record, launch);
  if (!refusal && hasZeroLocalSize(launch))
    refusal = {Reason::ZeroLocalSize};
  if (refusal)
    return {nullptr, {}, refusal};

  const LaunchSizes sizes = sizesOf(launch);
  for (VariantKernel &variant : record.variants) {
    const VariantChoice choice = ::examine(record, variant, launch, sizes);
    refusal = choice.refusal;
    if (refusal.reason != Reason::NotCreated &&
        refusal.reason != Reason::RejectedSizes)
      return choice;
  }
  return {nullptr, {}, refusal};
}

VariantChoice corvane::chooseVariant(AgentState &state, KernelRecord &record,
                                     const Launch &launch) {
  return state.profile ? state.profile->choose(state, record, launch)
                       : chooseVariant(record, launch);
}

std::vector<VariantChoice> corvane::variantsToAutotune(KernelRecord &record,
                                                       const Launch &launch) {
  std::vector<VariantChoice> accepting;
  if (refusalOfAll(record, launch))
    return accepting;
  const LaunchSizes sizes = sizesOf(launch);
  for (VariantKernel &variant : record.variants) {
    const VariantChoice choice = ::examine(record, variant, launch, sizes);
    if (!choice.refusal)
      accepting.push_back(choice);
  }
  return accepting;
}

static void writeArgument(llvm::raw_ostream &text,
                          const RecordedArgument &argument) {
  text << "argument " << argument.index;
  std::uint64_t value = 0;
  if (!argument.value)
    text << ", which has no value";
  else if (argument.size != 4 && argument.size != 8)
    text << ", which has " << argument.size << " bytes";
  else {
    std::memcpy(&value, argument.value, argument.size);
    text << " = " << value;
  }
}

std::string corvane::explain(const Refusal &refusal, const LaunchSizes &sizes) {
  std::string line;
  llvm::raw_string_ostream text(line);
  switch (refusal.reason) {
  case Reason::None:
    text << "the variant takes the launch";
    break;
  case Reason::NoVariants:
    text << "the kernel has no variants";
    break;
  case Reason::LostArgument:
    text << "the kernel has an argument that variants cannot get";
    break;
  case Reason::TooManyDimensions:
    text << "the launch has " << sizes.dimensions << " dimensions";
    break;
  case Reason::ZeroLocalSize:
    text << "the launch has a local size of zero";
    break;
  case Reason::NotInProfile:
    text << "the profile names no variant for the launch";
    break;
  case Reason::NotCreated:
    text << "the runtime did not create the variant's kernel";
    break;
  case Reason::RejectedSizes:
    // No other condition looks at sizes.
    text << whyRejected(
        static_cast<const llvm::CoarseRequest &>(*refusal.condition),
        sizes.dimensions, sizes.global.data(), sizes.local.data());
    break;
  case Reason::NoGlobalSize:
    text << "the launch has no global size";
    break;
  case Reason::RejectedArgument:
    text << refusal.condition->specText() << " rejects ";
    writeArgument(text, *refusal.argument);
    break;
  }
  return text.str();
}
