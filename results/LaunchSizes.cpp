// Compares the sizes of launches and writes them for people.

#include "results/LaunchSizes.h"

#include <algorithm>
#include <tuple>

using namespace corvane;

static auto tied(const LaunchSizes &sizes) {
  return std::tie(sizes.dimensions, sizes.global, sizes.local);
}

bool corvane::operator==(const LaunchSizes &left, const LaunchSizes &right) {
  return tied(left) == tied(right);
}

bool corvane::operator<(const LaunchSizes &left, const LaunchSizes &right) {
  return tied(left) < tied(right);
}

static std::string joined(const Sizes &sizes, std::uint32_t dimensions) {
  std::string text = std::to_string(sizes[0]);
  for (std::uint32_t i = 1; i != std::clamp(dimensions, 1U, 3U); ++i)
    text += "x" + std::to_string(sizes[i]);
  return text;
}

std::string corvane::sizesText(const LaunchSizes &sizes) {
  std::string text = joined(sizes.global, sizes.dimensions);
  if (sizes.hasLocal())
    text += " / " + joined(sizes.local, sizes.dimensions);
  return text;
}
