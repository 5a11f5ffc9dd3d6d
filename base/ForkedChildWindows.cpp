// Windows has no forks.

#include "base/ForkedChild.h"

using namespace corvane;

std::atomic<bool> detail::forkedChild{false};

void corvane::watchForks() {}
