// Process detach where the C++ runtime runs destructors for an ending library.

#include "agent/entry/ProcessDetach.h"

#include "results/Flush.h"

#include <new>

using namespace corvane;

namespace {
struct FlushAtExit {
  ~FlushAtExit() {
    try {
      flushAutotuneResults();
    } catch (const std::bad_alloc &) {
      // Results are not worth the application's way out.
    }
  }
};
} // namespace

void corvane::watchForProcessDetach() { static const FlushAtExit flush{}; }
