// Never reports a fork, because Windows has none.

#include "base/ForkedChild.h"

using namespace corvane;

std::atomic<bool> detail::forkedChild{false};

void corvane::watchForks() {}
