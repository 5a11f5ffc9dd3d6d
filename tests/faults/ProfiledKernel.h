// A kernel with variants, and a profile of it.

#pragma once

#include "results/profile/Profile.h"
#include "tests/support/ProgramScript.h"

#include <cstddef>
#include <string>
#include <vector>

namespace corvane::test {

inline constexpr const char *profiledSource =
    "kernel void k(global uchar *p) {}";

// By: printf 'source 0\nkernel void k(global uchar *p) {}' | sha256sum
inline constexpr const char *profiledHash = "ed37c389c5d83d3b5847e352c538c5f1"
                                            "73b89b00cbd2d946f2dd074b7d9abdb2";

/// What the kernel and its variants do.
inline void incrementAll(const Launch &launch) {
  for (unsigned char &element : launch.buffer(0))
    ++element;
}

/// A profile that was made of the scripted runtime's device: for each of these
/// global sizes the variant \p spec of the kernel "k".
inline Profile profileOf(const std::vector<std::size_t> &globalSizes,
                         const std::string &spec) {
  Profile profile;
  profile.devices = {{"device 1", "maker", "1.0"}};
  profile.programs = {profiledHash};
  for (const std::size_t size : globalSizes) {
    ProfileEntry entry;
    entry.kernel = "k";
    entry.use = spec;
    entry.sizes.global[0] = size;
    entry.versions[""] = {10.0, 7, Agreement::Equal};
    entry.versions[spec] = {5.0, 7, Agreement::Equal};
    profile.entries.push_back(entry);
  }
  return profile;
}

} // namespace corvane::test
