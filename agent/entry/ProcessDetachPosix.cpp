// Process detach where the C++ runtime runs destructors for an ending library.

#include "agent/entry/ProcessDetach.h"

#include "results/Flush.h"

using namespace corvane;

namespace {
struct FlushAtExit {
  ~FlushAtExit() { flushAutotuneResults(); }
};
} // namespace

void corvane::watchForProcessDetach() { static const FlushAtExit flush{}; }
