// The references that a chain of events holds.

#include "launch/EventChain.h"

#include "agent/RuntimeTable.h"

using namespace corvane;

HeldEvents::~HeldEvents() {
  for (cl_event event : events)
    (void)runtime().clReleaseEvent(event);
}

void EventChain::reserve(std::size_t count) {
  held = std::make_shared<HeldEvents>();
  held->reserve(count);
}

void EventChain::advance(cl_event event) {
  held->add(event);
  last = event;
}
