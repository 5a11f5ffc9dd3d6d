// Tests of which version a launch uses by a profile.

#include "results/profile/ProfileLookup.h"

#include "tests/unit/Runs.h"

#include <gmock/gmock.h>

using namespace corvane;
using namespace corvane::test;

static const ProfileDevice device = {"device", "vendor", "1"};

static ProfileEntry entry(const char *kernel, const LaunchSizes &sizes,
                          const char *use) {
  ProfileEntry made;
  made.kernel = kernel;
  made.sizes = sizes;
  if (use)
    made.use = use;
  return made;
}

static Profile profileOf(std::vector<ProfileEntry> entries) {
  Profile profile;
  profile.devices = {device};
  profile.programs = {"abc"};
  profile.entries = std::move(entries);
  return profile;
}

// The answer in words.
static std::string textOf(const ProfileAnswer &answer) {
  const std::string how = answer.measured ? "measured " : "inferred ";
  switch (answer.kind) {
  case ProfileAnswer::Unknown:
    return "unknown";
  case ProfileAnswer::Original:
    return how + "original";
  case ProfileAnswer::Variant:
    return how + answer.spec.str();
  }
  return "";
}

static std::string answer(const Profile &profile, const LaunchSizes &sizes,
                          const char *kernel = "k", const char *hash = "abc",
                          const ProfileDevice &on = device) {
  const ProfileLookup lookup(profile);
  const KernelChoices *const choices = lookup.choicesFor(hash, kernel, on);
  return choices ? textOf(choices->answer(sizes)) : "nothing";
}

TEST(ProfileLookup, AnswersForSizesThatWereMeasured) {
  const Profile profile = profileOf({entry("k", oneDimension(64, 8), "g0S4"),
                                     entry("k", oneDimension(64), nullptr),
                                     entry("k", oneDimension(32), "l0S2")});
  EXPECT_EQ(answer(profile, oneDimension(64, 8)), "measured g0S4");
  EXPECT_EQ(answer(profile, oneDimension(64)), "measured original");
  EXPECT_EQ(answer(profile, oneDimension(32)), "measured l0S2");
}

TEST(ProfileLookup, InfersWhatAllMeasuredSizesAgreeOn) {
  const Profile profile = profileOf({entry("k", oneDimension(64), "g0S4"),
                                     entry("k", oneDimension(32), "g0S4"),
                                     entry("o", oneDimension(64), nullptr),
                                     entry("other", oneDimension(8), "l0S2")});
  EXPECT_EQ(answer(profile, oneDimension(128)), "inferred g0S4");
  EXPECT_EQ(answer(profile, oneDimension(128), "o"), "inferred original");
}

TEST(ProfileLookup, InfersNothingWhereMeasuredSizesDisagree) {
  const std::vector<ProfileEntry> entries = {
      entry("k", oneDimension(64), "g0S4"),
      entry("k", oneDimension(32), nullptr),
      entry("k", oneDimension(16), "g0S4")};
  for (std::size_t first = 0; first != entries.size(); ++first) {
    std::vector<ProfileEntry> turned = entries;
    std::rotate(turned.begin(),
                turned.begin() + static_cast<std::ptrdiff_t>(first),
                turned.end());
    EXPECT_EQ(answer(profileOf(turned), oneDimension(128)), "unknown");
  }
}

TEST(ProfileLookup, TellsDimensionsApart) {
  const Profile profile = profileOf({entry("k", {1, {64, 0, 0}, {}}, "g0S4"),
                                     entry("k", {2, {64, 0, 0}, {}}, nullptr)});
  EXPECT_EQ(answer(profile, {1, {64, 0, 0}, {}}), "measured g0S4");
  EXPECT_EQ(answer(profile, {2, {64, 0, 0}, {}}), "measured original");
}

TEST(ProfileLookup, KnowsNothingOfAnotherKernelProgramOrDevice) {
  const LaunchSizes sizes = oneDimension(64);
  const Profile profile = profileOf({entry("k", sizes, "g0S4")});
  EXPECT_EQ(answer(profile, sizes, "K"), "nothing");
  EXPECT_EQ(answer(profile, sizes, "k", "abd"), "nothing");
  EXPECT_EQ(answer(profile, sizes, "k", "abc", {"device", "vendor", "2"}),
            "nothing");
  // Program and kernel are told apart even if the two texts in a row are the
  // same.
  EXPECT_EQ(answer(profile, sizes, "ck", "ab"), "nothing");
  EXPECT_EQ(answer(profile, sizes), "measured g0S4");
}

TEST(ProfileLookup, TakesTheFirstOfTwoEntriesForOneLaunch) {
  const LaunchSizes sizes = oneDimension(64);
  EXPECT_EQ(
      answer(profileOf({entry("k", sizes, "g0S4"), entry("k", sizes, "g0S2")}),
             sizes),
      "measured g0S4");
}

TEST(ProfileLookup, TellsAnotherDriverFromAnotherDevice) {
  using Match = ProfileLookup::DeviceMatch;
  const Profile profile = profileOf({});
  const ProfileLookup lookup(profile);
  EXPECT_EQ(lookup.match(device), Match::Known);
  EXPECT_EQ(lookup.match({"device", "vendor", "2"}), Match::OtherDriver);
  EXPECT_EQ(lookup.match({"device", "other", "1"}), Match::Unknown);
}
