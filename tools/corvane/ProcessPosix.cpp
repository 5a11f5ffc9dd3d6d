// Starts programs, and waits for them, by the calls of Posix.

#include "tools/corvane/Process.h"

#include "llvm/Support/FileSystem.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;

void corvane::setVariable(const std::string &name, const std::string &value) {
  ::setenv(name.c_str(), value.c_str(), 1);
}

void corvane::removeVariable(const std::string &name) {
  ::unsetenv(name.c_str());
}

std::vector<std::string> corvane::variableNames() {
  std::vector<std::string> names;
  for (char **entry = environ; entry && *entry; ++entry) {
    const std::string text = *entry;
    names.push_back(text.substr(0, text.find('=')));
  }
  return names;
}

std::string corvane::ownProgram() {
  return llvm::sys::fs::getMainExecutable(
      "corvane", reinterpret_cast<void *>(&corvane::ownProgram));
}

std::vector<std::string> corvane::argumentsOf(int count, char **values) {
  return {values + std::min(count, 1), values + count};
}

// Returns why the program could not be started.
static int execute(const Program &program) {
  std::vector<char *> arguments;
  for (const std::string &argument : program)
    arguments.push_back(const_cast<char *>(argument.c_str()));
  arguments.push_back(nullptr);
  ::execvp(arguments[0], arguments.data());
  return errno;
}

static ProgramEnd notStarted(int error) {
  const bool missing = error == ENOENT || error == ENOTDIR;
  return {false, missing ? NotFound : NotExecutable, std::strerror(error)};
}

ProgramEnd corvane::become(const Program &program) {
  return notStarted(execute(program));
}

namespace {

/// The signals that ask a process to do something, and the one of a child's
/// end. While this lives they are held back until next() takes them.
class HeldSignals {
public:
  HeldSignals() {
    sigemptyset(&held);
    for (int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2,
                       SIGALRM, SIGXCPU, SIGCHLD})
      sigaddset(&held, signal);
    pthread_sigmask(SIG_BLOCK, &held, &before);
    // A process that ignores this signal gets none when a child ends.
    struct sigaction byDefault = {};
    byDefault.sa_handler = SIG_DFL;
    sigaction(SIGCHLD, &byDefault, &childBefore);
  }
  ~HeldSignals() { giveBack(); }
  HeldSignals(const HeldSignals &) = delete;
  HeldSignals &operator=(const HeldSignals &) = delete;

  /// Makes the signals what they were when this process started.
  void giveBack() const {
    sigaction(SIGCHLD, &childBefore, nullptr);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
  }

  /// Waits for the next signal.
  siginfo_t next() const {
    siginfo_t info = {};
    while (::sigwaitinfo(&held, &info) < 0 && errno == EINTR) {
    }
    return info;
  }

private:
  sigset_t held;
  sigset_t before;
  struct sigaction childBefore;
};

/// A pipe whose ends are closed when this process executes a program.
class Pipe {
public:
  Pipe() : works(::pipe2(ends, O_CLOEXEC) == 0) {}
  ~Pipe() {
    if (works) {
      ::close(ends[0]);
      closeWriting();
    }
  }
  Pipe(const Pipe &) = delete;
  Pipe &operator=(const Pipe &) = delete;

  void write(int number) const {
    [[maybe_unused]] const ssize_t written =
        ::write(ends[1], &number, sizeof number);
  }

  void closeWriting() {
    if (ends[1] >= 0)
      ::close(ends[1]);
    ends[1] = -1;
  }

  /// The number that was written; 0 if the pipe was closed without one.
  int read() const {
    int number = 0;
    ssize_t got = 0;
    do
      got = ::read(ends[0], &number, sizeof number);
    while (got < 0 && errno == EINTR);
    return got == sizeof number ? number : 0;
  }

private:
  int ends[2] = {-1, -1};

public:
  const bool works;
};

} // namespace

// Returns the status of the child's end.
static int waitFor(pid_t child, const HeldSignals &signals) {
  while (true) {
    const siginfo_t info = signals.next();
    if (info.si_signo == SIGCHLD) {
      int status = 0;
      const pid_t ended = ::waitpid(child, &status, WNOHANG);
      if (ended == child)
        return status;
      if (ended < 0 && errno != EINTR)
        return 0; // nothing can be learned of it any more
    } else if (info.si_code != SI_KERNEL || info.si_signo == SIGHUP ||
               info.si_signo == SIGXCPU) {
      // What a terminal's keys send comes from the kernel, and reaches the
      // child too. Its end is told to the first process of a session alone.
      ::kill(child, info.si_signo);
    }
  }
}

ProgramEnd corvane::runAndWait(const Program &program) {
  Pipe failure;
  if (!failure.works)
    return {false, CommandFailed, std::strerror(errno)};
  HeldSignals signals;
  const pid_t child = ::fork();
  if (child < 0)
    return {false, CommandFailed, std::strerror(errno)};
  if (child == 0) {
    signals.giveBack();
    failure.write(execute(program));
    ::_exit(NotFound);
  }

  failure.closeWriting();
  const int error = failure.read();
  const int status = waitFor(child, signals);
  if (error != 0)
    return notStarted(error);
  return {true,
          WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status),
          std::string()};
}

LoaderAnswer corvane::askLoader(const std::string &layer) {
  void *const loader = ::dlopen("libOpenCL.so.1", RTLD_NOW | RTLD_LOCAL);
  if (!loader)
    return LoaderAnswer::IsMissing;
  using GetPlatforms = int (*)(unsigned, void *, unsigned *);
  const auto getPlatforms =
      reinterpret_cast<GetPlatforms>(::dlsym(loader, "clGetPlatformIDs"));
  unsigned platforms = 0;
  const int status = getPlatforms ? getPlatforms(0, nullptr, &platforms) : -1;
  if (::dlopen(layer.c_str(), RTLD_LAZY | RTLD_NOLOAD))
    return LoaderAnswer::TakesLayers;
  return status != 0 || platforms == 0 ? LoaderAnswer::HasNoPlatform
                                       : LoaderAnswer::TakesNone;
}
