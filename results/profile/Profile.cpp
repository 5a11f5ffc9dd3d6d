// Compares devices.

#include "results/profile/Profile.h"

#include <tuple>

using namespace corvane;

static auto tied(const ProfileDevice &device) {
  return std::tie(device.name, device.vendor, device.driver);
}

bool corvane::operator==(const ProfileDevice &left,
                         const ProfileDevice &right) {
  return tied(left) == tied(right);
}

bool corvane::operator<(const ProfileDevice &left, const ProfileDevice &right) {
  return tied(left) < tied(right);
}
