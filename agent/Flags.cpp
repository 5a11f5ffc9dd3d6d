// The switches: atomic, because threads of the runtime read them.

#include "agent/Flags.h"

#include <atomic>

using namespace corvane;

static std::atomic<bool> autotuneOutputFlag{false};
static std::atomic<bool> hooksInstalled{false};
static std::atomic<bool> bypassVectorizationSafetyCheck{false};

bool corvane::autotuneOutput() {
  return autotuneOutputFlag.load(std::memory_order_relaxed);
}

void corvane::setAutotuneOutput(bool on) { autotuneOutputFlag = on; }

void corvane::setHooksInstalled(bool installed) { hooksInstalled = installed; }

void corvane::setBypassVectorizationSafetyCheck(bool bypass) {
  bypassVectorizationSafetyCheck = bypass;
}
