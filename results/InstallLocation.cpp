// People copy the location from a Windows command line, quotes included.

#include "results/InstallLocation.h"

#include <algorithm>

using namespace corvane;

std::string corvane::normalizedLocation(std::string location) {
  std::replace(location.begin(), location.end(), '\\', '/');
  if (!location.empty() && location.front() == '"')
    location.erase(0, 1);
  if (!location.empty() && location.back() == '"')
    location.pop_back();
  return location;
}
