// The list of what is kept.

#include "launch/KeptMemory.h"

#include <map>

using namespace corvane;

void corvane::keepForever(std::vector<HostCopy> copies) {
  // Never destroyed: transfers may be under way when the process ends.
  static auto &kept = *new std::map<void *, HostCopy>;
  for (HostCopy &copy : copies) {
    void *area = copy.get();
    kept.try_emplace(area, std::move(copy));
  }
}
