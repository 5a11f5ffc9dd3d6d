// Where a profile is looked for, and what a file may hold.

#include "tests/behaviour/launch/WithProfile.h"

#include "tests/support/ErrorCapture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

using namespace corvane;
using namespace corvane::test;
using testing::HasSubstr;
namespace fs = std::filesystem;

namespace {
struct ProfilePlaces : WithProfile {
  ProfilePlaces() { use(sizes(256), "g0S4"); }

  /// The kernel that runs with the profile at \p place; \c said gets what is
  /// written meanwhile.
  std::string ranWith(const std::string &place) {
    ErrorCapture capture;
    app = std::make_unique<Application>(Variables{{variable::profile, place}});
    app->program.source(profiledSource)
        .kernel("k", 1)
        .kernel("k_coarsed_g0S4", 1);
    kernel = app->create("k");
    app->set(kernel, 0, cl_int{16});
    std::string ran = run({256});
    said = capture.text();
    app.reset();
    return ran;
  }

  std::string said;
};
} // namespace

TEST_F(ProfilePlaces, AreAFolderOrTheFileItself) {
  folder.write("profile.json", profileText(profile));
  folder.write("mine", profileText(profile));
  for (const std::string &place :
       {folder.text(), folder.file("profile.json"), folder.file("mine")}) {
    EXPECT_EQ(ranWith(place), "k_coarsed_g0S4") << place;
    EXPECT_EQ(said, "");
  }
}

TEST_F(ProfilePlaces, AreLookedForFromTheFolderOfTheLoad) {
  folder.write("profile.json", profileText(profile));
  const fs::path before = fs::current_path();
  fs::current_path(folder.path().parent_path());
  EXPECT_EQ(ranWith(folder.path().filename().string()), "k_coarsed_g0S4");
  fs::current_path(before);
  EXPECT_EQ(said, "");
}

TEST_F(ProfilePlaces, WithAFileThatIsCutOffOrNonsenseAreSaidInOneLine) {
  const std::string whole = profileText(profile);
  for (const std::string &bytes :
       {std::string(), whole.substr(0, whole.size() / 2),
        std::string(1 << 20, '['), std::string(1 << 16, '\0')}) {
    folder.write("profile.json", bytes);
    EXPECT_EQ(ranWith(folder.text()), "k");
    EXPECT_THAT(said, HasSubstr("cannot be used as a profile: "));
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
  }
}

TEST_F(ProfilePlaces, MayHoldEntriesOfNonsense) {
  profile.entries.front().use = std::nullopt;
  use(sizes(256), "g0S4"); // of two for the same launch the first one counts
  use(sizes(SIZE_MAX), std::string(100000, 'g'));
  use(sizes(512), std::string(1, '\0'));
  folder.write("profile.json", profileText(profile));
  EXPECT_EQ(ranWith(folder.text()), "k");
  EXPECT_EQ(said, "");
}
