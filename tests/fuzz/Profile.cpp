// Fuzzes profiles: any bytes, through reader, writer and look-up.

#include "tests/fuzz/Input.h"

#include "results/profile/ProfileFile.h"
#include "results/profile/ProfileLookup.h"

using namespace corvane;
using namespace corvane::fuzz;

// Checks that the answer for every measured launch is its first entry's.
static void checkLookup(const Profile &profile) {
  const ProfileLookup lookup(profile);
  for (const ProfileEntry &entry : profile.entries) {
    const ProfileDevice &device = profile.devices[entry.device];
    check(lookup.match(device) == ProfileLookup::DeviceMatch::Known,
          "a device of the profile is known");
    const KernelChoices *const choices = lookup.choicesFor(
        profile.programs[entry.program], entry.kernel, device);
    check(choices && choices->answer(entry.sizes).measured,
          "an entry is an answer");
  }
  if (!profile.entries.empty()) {
    const ProfileEntry &first = profile.entries.front();
    const ProfileAnswer answer =
        lookup
            .choicesFor(profile.programs[first.program], first.kernel,
                        profile.devices[first.device])
            ->answer(first.sizes);
    check(answer.spec == first.use.value_or(""), "the first entry counts");
  }
}

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string text = std::string(Input(data, size).remaining());
  llvm::Expected<Profile> profile = readProfile(text);
  if (!profile) {
    const std::string why = llvm::toString(profile.takeError());
    check(!why.empty(), "an error says what is wrong");
    return 0;
  }
  const std::string written = profileText(*profile);
  llvm::Expected<Profile> again = readProfile(written);
  check(static_cast<bool>(again), "what is written can be read");
  check(profileText(*again) == written, "what is written is read as it was");
  checkLookup(*profile);
  return 0;
}
