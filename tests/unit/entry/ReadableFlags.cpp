// Replaces the agent's flags by some that remember what was written.

#include "tests/unit/entry/ReadableFlags.h"

#include "agent/Flags.h"

using namespace corvane;

std::atomic<bool> detail::autotuneOutputFlag{false};

test::WrittenFlags &test::writtenFlags() {
  static auto &flags = *new WrittenFlags;
  return flags;
}

void corvane::setAutotuneOutput(bool on) { detail::autotuneOutputFlag = on; }

void corvane::setHooksInstalled(bool installed) {
  test::writtenFlags().hooksInstalled.push_back(installed);
}

void corvane::setBypassVectorizationSafetyCheck(bool bypass) {
  test::writtenFlags().bypass.push_back(bypass);
}
