// Does what every system needs before the library is gone.

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
    // The process must end all the same: the results are lost.
  }
}
