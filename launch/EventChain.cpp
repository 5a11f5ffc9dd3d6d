// Hands the one reference of a chain on.

#include "launch/EventChain.h"

#include "agent/RuntimeTable.h"

using namespace corvane;

void EventChain::advance(cl_event event) {
  release();
  last = event;
}

void EventChain::release() {
  if (last)
    (void)runtime().clReleaseEvent(last);
  last = nullptr;
}
