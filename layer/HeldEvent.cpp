// Takes references to events and counts those that the layer holds.

#include "layer/HeldEvent.h"

#include "layer/ObjectTable.h"

#include <mutex>
#include <unordered_map>

using namespace corvane::layer;

namespace {
struct HoldCounts {
  std::mutex lock;
  std::unordered_map<cl_event, cl_uint> counts;
};
} // namespace

static HoldCounts &holds() { return neverDestroyed<HoldCounts>(); }

HeldEvent::HeldEvent(cl_event heldEvent) : event(heldEvent) {
  HoldCounts &all = holds();
  std::lock_guard<std::mutex> guard(all.lock);
  ++all.counts[event];
}

HeldEvent::~HeldEvent() {
  {
    HoldCounts &all = holds();
    std::lock_guard<std::mutex> guard(all.lock);
    const auto found = all.counts.find(event);
    if (--found->second == 0)
      all.counts.erase(found);
  }
  (void)runtime().clReleaseEvent(event);
}

std::shared_ptr<HeldEvent> HeldEvent::adopt(cl_event event) {
  return std::shared_ptr<HeldEvent>(new HeldEvent(event));
}

std::shared_ptr<HeldEvent> HeldEvent::retain(cl_event event) {
  if (!event || runtime().clRetainEvent(event) != CL_SUCCESS)
    return nullptr;
  return adopt(event);
}

bool HeldEvent::askIfOver() {
  if (over)
    return true;
  cl_int status = CL_COMPLETE;
  // An event that the runtime does not know counts as over.
  if (runtime().clGetEventInfo(event, CL_EVENT_COMMAND_EXECUTION_STATUS,
                               sizeof status, &status, nullptr) != CL_SUCCESS ||
      status <= CL_COMPLETE)
    over = true;
  return over;
}

cl_uint corvane::layer::heldReferences(cl_event event) {
  HoldCounts &all = holds();
  std::lock_guard<std::mutex> guard(all.lock);
  const auto found = all.counts.find(event);
  return found == all.counts.end() ? 0 : found->second;
}
