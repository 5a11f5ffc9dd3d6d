// Finds decisions in two steps: by the texts of a kernel, then by sizes.

#include "results/profile/ProfileLookup.h"

#include "llvm/ADT/STLExtras.h"

using namespace corvane;
using llvm::StringRef;

void KernelChoices::add(const LaunchSizes &sizes,
                        const std::optional<std::string> &use) {
  const auto [place, isNew] = bySizes.try_emplace(sizes, use.value_or(""));
  // If all that were added before agree, comparing with any two is enough.
  unanimous = unanimous && place->second == bySizes.begin()->second &&
              place->second == bySizes.rbegin()->second;
}

static ProfileAnswer answerOf(const std::string &use, bool measured) {
  if (use.empty())
    return {ProfileAnswer::Original, measured, StringRef()};
  return {ProfileAnswer::Variant, measured, use};
}

ProfileAnswer KernelChoices::answer(const LaunchSizes &sizes) const {
  const auto found = bySizes.find(sizes);
  if (found != bySizes.end())
    return answerOf(found->second, true);
  if (unanimous && !bySizes.empty())
    return answerOf(bySizes.begin()->second, false);
  return {};
}

// Each text with its length before it, so that no two keys are the same. The
// same device may stand in the list more than once.
static std::string keyOf(const ProfileDevice &device, StringRef programHash,
                         StringRef kernel) {
  std::string key;
  for (StringRef text : {StringRef(device.name), StringRef(device.vendor),
                         StringRef(device.driver), programHash, kernel})
    key += std::to_string(text.size()) + ":" + text.str();
  return key;
}

ProfileLookup::ProfileLookup(const Profile &profile)
    : devices(profile.devices) {
  for (const ProfileEntry &entry : profile.entries)
    choices[keyOf(profile.devices[entry.device],
                  profile.programs[entry.program], entry.kernel)]
        .add(entry.sizes, entry.use);
}

ProfileLookup::DeviceMatch
ProfileLookup::match(const ProfileDevice &device) const {
  if (llvm::is_contained(devices, device))
    return DeviceMatch::Known;
  const bool otherDriver =
      llvm::any_of(devices, [&](const ProfileDevice &known) {
        return known.name == device.name && known.vendor == device.vendor;
      });
  return otherDriver ? DeviceMatch::OtherDriver : DeviceMatch::Unknown;
}

const KernelChoices *
ProfileLookup::choicesFor(StringRef programHash, StringRef kernel,
                          const ProfileDevice &device) const {
  const auto found = choices.find(keyOf(device, programHash, kernel));
  return found == choices.end() ? nullptr : &found->second;
}
