// The list of what is kept.

#include "launch/KeptMemory.h"

using namespace corvane;

// Never emptied: transfers may be under way when the process ends.
static HostArea *lastKept = nullptr;

void corvane::keepForever(const std::vector<HostCopy> &copies) {
  for (const HostCopy &copy : copies) {
    if (copy->itself)
      continue;
    copy->itself = copy;
    copy->keptBefore = lastKept;
    lastKept = copy.get();
  }
}
