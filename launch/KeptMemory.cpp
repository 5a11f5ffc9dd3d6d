// The list of what is kept.

#include "launch/KeptMemory.h"

#include <map>

using namespace corvane;

void corvane::keepForever(const std::vector<HostCopy> &copies) {
  // Never destroyed: transfers may be under way when the process ends.
  static auto &kept = *new std::map<void *, HostCopy>;
  for (const HostCopy &copy : copies)
    kept.try_emplace(copy.get(), copy);
}
