// Keeps a failing write from raising a signal; for Posix systems.

#pragma once

#include <csignal>
#include <initializer_list>

#include <ctime>

namespace corvane::platform {

/// While it lives, a write of this thread into a pipe without a reader, or
/// beyond the limit for the size of files, only fails. Other threads, and
/// signals that others send meanwhile, are not affected.
class WriteSignals {
public:
  WriteSignals() {
    sigemptyset(&raised);
    sigaddset(&raised, SIGPIPE);
    sigaddset(&raised, SIGXFSZ);
    sigset_t pending;
    sigpending(&pending);
    // One that waits already is not ours to take; another of its kind adds
    // nothing to it.
    for (const int number : {SIGPIPE, SIGXFSZ})
      if (sigismember(&pending, number) == 1)
        sigdelset(&raised, number);
    sigset_t both;
    sigemptyset(&both);
    sigaddset(&both, SIGPIPE);
    sigaddset(&both, SIGXFSZ);
    pthread_sigmask(SIG_BLOCK, &both, &before);
  }
  ~WriteSignals() {
    constexpr std::timespec now = {};
    while (sigtimedwait(&raised, nullptr, &now) > 0) {
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
  }
  WriteSignals(const WriteSignals &) = delete;
  WriteSignals &operator=(const WriteSignals &) = delete;

private:
  sigset_t raised; ///< those that can only be ours
  sigset_t before;
};

} // namespace corvane::platform
