// Learns of forks where a process can be copied.

#include "base/ForkedChild.h"

#include <pthread.h>

using namespace corvane;

std::atomic<bool> detail::forkedChild{false};

static void noteFork() { detail::forkedChild = true; }

// The C library forgets the handler when this library is closed.
void corvane::watchForks() {
  static const int registered = pthread_atfork(nullptr, nullptr, noteFork);
  (void)registered;
}
