// Makes launch keys from sizes, and joins and splits their texts.

#include "results/LaunchKey.h"

#include <algorithm>

using namespace corvane;

bool LaunchKey::operator==(const LaunchKey &other) const {
  const auto ours = fields();
  const auto theirs = other.fields();
  return std::equal(ours.begin(), ours.end(), theirs.begin(),
                    [](const std::string *left, const std::string *right) {
                      return *left == *right;
                    });
}

LaunchKey corvane::makeLaunchKey(const std::string &kernel,
                                 const LaunchSizes &sizes) {
  const auto text = [&sizes](const Sizes &of, std::size_t d) {
    return d < sizes.dimensions ? std::to_string(of[d]) : std::string();
  };
  return {kernel,
          text(sizes.global, 0),
          text(sizes.global, 1),
          text(sizes.global, 2),
          text(sizes.local, 0),
          text(sizes.local, 1),
          text(sizes.local, 2)};
}

std::string corvane::joinedFields(const LaunchKey &key, char separator) {
  std::string joined;
  for (const std::string *field : key.fields()) {
    if (field != &key.kernel)
      joined += separator;
    joined += *field;
  }
  return joined;
}

LaunchKey corvane::splitFields(std::string_view text) {
  LaunchKey key;
  for (std::string *field : key.fields()) {
    const std::size_t comma =
        field == &key.zLocal ? std::string_view::npos : text.find(',');
    *field = text.substr(0, comma);
    text.remove_prefix(comma == std::string_view::npos ? text.size()
                                                       : comma + 1);
  }
  return key;
}
