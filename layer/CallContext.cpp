// Keeps the contexts of a thread's calls, each within the one before it.

#include "layer/CallContext.h"

#include <utility>

using namespace corvane::layer;

static thread_local CallContext *innermost = nullptr;

CallContext::CallContext() : outer(innermost) { innermost = this; }

CallContext::~CallContext() { innermost = outer; }

CallContext *CallContext::current() { return innermost; }

bool CallContext::isInAgentsLaunch() {
  for (const CallContext *call = innermost; call; call = call->outer)
    if (call->isWithAgent)
      return true;
  return false;
}

std::optional<cl_int> CallContext::takeAttempt() {
  return std::exchange(attempted, std::nullopt);
}
