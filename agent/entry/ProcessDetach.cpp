// What has to be done before the library is gone, on every system.

#include "agent/entry/ProcessDetach.h"

#include "base/ForkedChild.h"
#include "session/Flush.h"

#include <new>

void corvane::flushAtDetach() {
  if (inForkedChild())
    return;
  try {
    flushAutotuneResults();
  } catch (const std::bad_alloc &) {
    // Results are not worth the application's way out.
  }
}
