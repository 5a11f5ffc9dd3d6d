// Process detach where the C++ runtime runs destructors for an ending library.

#include "agent/entry/ProcessDetach.h"

using namespace corvane;

namespace {
struct FlushAtExit {
  ~FlushAtExit() { flushAtDetach(); }
};
} // namespace

void corvane::watchForProcessDetach() { static const FlushAtExit flush{}; }
