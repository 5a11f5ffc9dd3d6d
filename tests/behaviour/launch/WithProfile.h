// An application for whose kernel a profile was made in another process.

#pragma once

#include "tests/behaviour/launch/Application.h"

#include "agent/Environment.h"
#include "results/profile/ProfileFile.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace corvane::test {

inline constexpr const char *profiledSource = "kernel void k(int n) {}";

// By: printf 'source 0\nkernel void k(int n) {}' | sha256sum
inline constexpr const char *profiledHash = "911c81dda1778f2ac7f3e957d7e3b9c5"
                                            "7816b9519abe766ff315c1d82ecc14cd";

inline LaunchSizes sizes(std::size_t global, std::size_t local = 4) {
  LaunchSizes made;
  made.global[0] = global;
  made.local[0] = local;
  return made;
}

/// A profile of a kernel "k" that was measured in another process.
struct WithProfile : testing::Test {
  WithProfile() {
    profile.devices = {{"device 1", "maker", "1.0"}};
    profile.programs = {profiledHash};
  }

  void use(const LaunchSizes &at, const std::optional<std::string> &spec) {
    ProfileEntry entry;
    entry.kernel = "k";
    entry.sizes = at;
    entry.use = spec;
    entry.versions[""] = {10.0, 7, Agreement::Equal};
    if (spec)
      entry.versions[*spec] = {5.0, 7, Agreement::Equal};
    profile.entries.push_back(entry);
  }

  /// Starts the application, whose program has these variants of "k".
  void start(const std::vector<std::string> &specs = {"g0S2", "g0S4", "g0S8"},
             Variables more = {}) {
    folder.write("profile.json", text.empty() ? profileText(profile) : text);
    more.emplace_back(variable::profile, folder.text());
    app = std::make_unique<Application>(more);
    app->program.source(profiledSource);
    app->program.kernel("k", 1);
    for (const std::string &spec : specs)
      app->program.kernel("k_coarsed_" + spec, 1);
    kernel = app->create("k");
    app->set(kernel, 0, cl_int{16});
  }

  /// The kernel that a launch of "k" really runs.
  std::string run(const SizeList &global, const SizeList &local = {4}) {
    app->runtime.forgetTranscript();
    EXPECT_EQ(app->launch(kernel, global, local), CL_SUCCESS);
    const std::vector<std::string> launches = app->launches();
    if (launches.size() != 1)
      return std::to_string(launches.size()) + " launches";
    const std::size_t begin = launches[0].find("kernel ") + 7;
    return launches[0].substr(begin, launches[0].find(',', begin) - begin);
  }

  TempFolder folder;
  Profile profile;
  std::string text; ///< the file's, if it is not the profile's
  std::unique_ptr<Application> app;
  cl_kernel kernel = nullptr;
};
} // namespace corvane::test
