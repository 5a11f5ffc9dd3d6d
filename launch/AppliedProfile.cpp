// Reads a profile at the load and looks launches up in it.

#include "launch/AppliedProfile.h"

#include "agent/AgentState.h"
#include "agent/Environment.h"
#include "agent/ErrorStream.h"
#include "base/RegularFile.h"
#include "programs/DeviceIdentity.h"
#include "programs/ProgramIdentity.h"
#include "results/ResultFiles.h"
#include "results/profile/ProfileFile.h"

#include "llvm/ADT/StringExtras.h"
#include "llvm/Support/FileSystem.h"
#include "llvm/Support/Path.h"

#include <utility>

using namespace corvane;

// A program that never launches the same sizes twice must not fill the memory.
static constexpr std::size_t mostConfigurations = 100000;

AppliedProfile::AppliedProfile(const Profile &profile, std::string nameOfFile,
                               std::shared_ptr<ProfileSummary> counts)
    : lookup(profile), file(std::move(nameOfFile)), summary(std::move(counts)) {
}

const std::optional<ProfileDevice> &
AppliedProfile::identify(cl_device_id device) {
  const auto known = devices.find(device);
  if (known != devices.end())
    return known->second;
  std::optional<ProfileDevice> &added = devices[device];
  if (std::optional<DeviceIdentity> told = readDeviceIdentity(device))
    added = ProfileDevice{std::move(told->name), std::move(told->vendor),
                          std::move(told->driver)};
  if (added && !toldOtherDriver &&
      lookup.match(*added) == ProfileLookup::DeviceMatch::OtherDriver) {
    toldOtherDriver = true;
    writeError(inOneLine("CV: " + file +
                         " was made with another driver of a device: there "
                         "kernels run as they are.") +
               "\n");
  }
  return added;
}

ProfileAnswer AppliedProfile::answer(AgentState &state,
                                     const KernelRecord &record,
                                     cl_device_id device,
                                     const LaunchSizes &sizes) {
  const std::optional<ProfileDevice> &described = identify(device);
  if (!described)
    return {};
  const std::optional<std::string> hash =
      programHash(state, record.program, device);
  const KernelChoices *const choices =
      hash ? lookup.choicesFor(*hash, record.name(), *described) : nullptr;
  return choices ? choices->answer(sizes) : ProfileAnswer();
}

// Null if nothing is counted.
bool *AppliedProfile::noteConfiguration(Configuration configuration,
                                        bool isKnown) {
  if (!summary || configurations.size() == mostConfigurations)
    return nullptr;
  const auto [entry, isNew] =
      configurations.try_emplace(std::move(configuration), false);
  if (isNew) {
    ++summary->configurations;
    summary->unknown += isKnown ? 0U : 1U;
  }
  return &entry->second;
}

ProfiledLaunch AppliedProfile::lookUp(AgentState &state, KernelRecord &record,
                                      cl_device_id device,
                                      const LaunchSizes &sizes) {
  const ProfileAnswer found = answer(state, record, device, sizes);
  ProfiledLaunch launch;
  launch.device = device;
  launch.sizes = sizes;
  if (found.kind == ProfileAnswer::Variant)
    for (VariantKernel &variant : record.variants)
      if (found.spec == variant.description->spec) {
        launch.variant = &variant;
        break;
      }
  if (summary)
    launch.ranVariant = noteConfiguration(
        {programHash(state, record.program, device).value_or(std::string()),
         record.name(), device, sizes},
        found.kind != ProfileAnswer::Unknown);
  return launch;
}

// Irregular launches fail or are not of any sizes that were measured.
VariantChoice AppliedProfile::choose(AgentState &state, KernelRecord &record,
                                     const Launch &launch) {
  VariantChoice choice;
  choice.refusal = {Refusal::Reason::NotInProfile};
  if (record.variants.empty() || isIrregular(launch) || hasOffset(launch)) {
    record.profiled = {};
    return choice;
  }
  const cl_device_id device = deviceOfQueue(launch.queue);
  const LaunchSizes sizes = sizesOf(launch);
  if (!record.profiled.isFor(device, sizes))
    record.profiled = lookUp(state, record, device, sizes);
  if (!record.profiled.variant)
    return choice;
  choice = examine(record, *record.profiled.variant, launch);
  if (choice.refusal)
    choice.variant = nullptr;
  return choice;
}

void AppliedProfile::countLaunch(KernelRecord &record, bool byVariant) {
  bool *const ranVariant = record.profiled.ranVariant;
  if (!summary || !ranVariant)
    return;
  ++summary->launches;
  if (!byVariant)
    return;
  ++summary->byVariant;
  summary->withVariant += *ranVariant ? 0U : 1U;
  *ranVariant = true;
}

static llvm::Expected<Profile> readProfileFile(const std::string &file) {
  llvm::Expected<std::string> text = readRegularFile(file, profileSizeLimit);
  if (!text)
    return text.takeError();
  return readProfile(*text);
}

std::unique_ptr<AppliedProfile>
corvane::readAppliedProfile(const std::string &loadFolder,
                            std::shared_ptr<ProfileSummary> counts) {
  const char *const value = lookUp(variable::profile);
  if (!value || *value == '\0')
    return nullptr;
  std::string file = value;
  if (!loadFolder.empty() && !llvm::sys::path::has_root_path(file))
    file = resultPath(loadFolder, file);
  if (llvm::sys::fs::is_directory(file))
    file = resultPath(file, resultFile::profile);
  llvm::Expected<Profile> profile = readProfileFile(file);
  if (!profile) {
    // The error may repeat what is in the file.
    writeError(inOneLine("CV: " + file + " cannot be used as a profile: " +
                         llvm::toString(profile.takeError()) +
                         ". Kernels run as they are.") +
               "\n");
    profile = Profile();
  }
  return std::make_unique<AppliedProfile>(*profile, file, std::move(counts));
}
