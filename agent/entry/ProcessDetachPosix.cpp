// Hooks into the end of the library where the C++ runtime runs its destructors.

#include "agent/entry/LoadSteps.h"

#include "session/Flush.h"

using namespace corvane;

namespace {
struct FlushAtExit {
  ~FlushAtExit() {
    endTuning(true);
    flushAtDetach();
  }
};
} // namespace

void corvane::watchForProcessDetach() { static const FlushAtExit flush{}; }
