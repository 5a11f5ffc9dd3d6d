// Defines the switches, which are atomic because threads of the runtime read
// them.

#include "agent/Flags.h"

using namespace corvane;

std::atomic<bool> detail::autotuneOutputFlag{false};
static std::atomic<bool> hooksInstalled{false};
static std::atomic<bool> bypassVectorizationSafetyCheck{false};

void corvane::setAutotuneOutput(bool on) { detail::autotuneOutputFlag = on; }

void corvane::setHooksInstalled(bool installed) { hooksInstalled = installed; }

void corvane::setBypassVectorizationSafetyCheck(bool bypass) {
  bypassVectorizationSafetyCheck = bypass;
}
