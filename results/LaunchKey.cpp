// Makes keys from sizes and from text.

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
                                 std::uint32_t workDim,
                                 const std::array<std::size_t, 3> &globalSize,
                                 const std::array<std::size_t, 3> &localSize) {
  const auto text = [workDim](const std::array<std::size_t, 3> &sizes,
                              std::size_t d) {
    return d < workDim ? std::to_string(sizes[d]) : std::string();
  };
  return {kernel,
          text(globalSize, 0),
          text(globalSize, 1),
          text(globalSize, 2),
          text(localSize, 0),
          text(localSize, 1),
          text(localSize, 2)};
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
