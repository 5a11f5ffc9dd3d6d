// Asks for the terminal by the calls of Posix.

#include "tools/corvane/Terminal.h"

#include <csignal>
#include <cstdlib>
#include <cstring>

#include <sys/ioctl.h>
#include <unistd.h>

using namespace corvane;

std::optional<TerminalSize> corvane::errorTerminal() {
  const char *const kind = std::getenv("TERM");
  if (!::isatty(STDERR_FILENO) || !kind || std::strcmp(kind, "dumb") == 0)
    return std::nullopt;
  struct winsize size = {};
  if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0)
    return std::nullopt;
  return TerminalSize{size.ws_row, size.ws_col};
}

void corvane::writeToTerminal(llvm::StringRef bytes) {
  [[maybe_unused]] const ssize_t written =
      ::write(STDERR_FILENO, bytes.data(), bytes.size());
}

std::thread corvane::startThread(std::function<void()> work) {
  sigset_t all, before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  std::thread thread(std::move(work)); // inherits the mask
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return thread;
}
