// Starts a child, feeds it, listens to it, and sees to its end.
//
// The process is an application's. It may wait for any child of its own, and so
// for this one, or ignore the ends of children. So nothing depends on how the
// child's end is told.

#include "base/WriteSignals.h"
#include "companion/GeneratorRun.h"

#include "llvm/ADT/STLExtras.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;
using Clock = std::chrono::steady_clock;

namespace {

/// A descriptor that closes itself; negative: none.
class Descriptor {
public:
  Descriptor() = default;
  explicit Descriptor(int opened) : number(opened) {}
  Descriptor(Descriptor &&other) noexcept
      : number(std::exchange(other.number, -1)) {}
  Descriptor &operator=(Descriptor &&other) noexcept {
    std::swap(number, other.number);
    return *this;
  }
  ~Descriptor() { reset(); }

  int get() const { return number; }
  bool isOpen() const { return number >= 0; }
  void reset() {
    if (number >= 0)
      close(number);
    number = -1;
  }

private:
  int number = -1;
};

/// A pipe without the numbers of the standard streams, which the application
/// may have closed and the child uses.
struct Pipe {
  Descriptor reading;
  Descriptor writing;

  Pipe() {
    std::array<int, 2> ends{-1, -1};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
      return;
    reading = moved(Descriptor(ends[0]));
    writing = moved(Descriptor(ends[1]));
  }
  bool isOpen() const { return reading.isOpen() && writing.isOpen(); }

private:
  static Descriptor moved(Descriptor from) {
    if (from.get() > STDERR_FILENO)
      return from;
    return Descriptor(fcntl(from.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
  }
};

/// What the child's streams become, and what it does not inherit.
class ChildFiles {
public:
  ChildFiles(int input, int output) {
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null",
                                     O_WRONLY, 0);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
  }
  ~ChildFiles() { posix_spawn_file_actions_destroy(&actions); }
  ChildFiles(const ChildFiles &) = delete;
  ChildFiles &operator=(const ChildFiles &) = delete;

  posix_spawn_file_actions_t actions;
};

/// A group of processes of its own, and signals as in a new session.
class ChildAttributes {
public:
  ChildAttributes() {
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP |
                                              POSIX_SPAWN_SETSIGMASK |
                                              POSIX_SPAWN_SETSIGDEF);
  }
  ~ChildAttributes() { posix_spawnattr_destroy(&attributes); }
  ChildAttributes(const ChildAttributes &) = delete;
  ChildAttributes &operator=(const ChildAttributes &) = delete;

  posix_spawnattr_t attributes;
};

/// A child that is running or has not been waited for.
class Child {
public:
  explicit Child(pid_t started) : process(started) {}
  ~Child() { end(); }
  Child(const Child &) = delete;
  Child &operator=(const Child &) = delete;

  void limit(const ChildLimits &limits) const;

  /// Waits until it has ended, at the latest until \p deadline. Empty if it
  /// succeeded or if that cannot be told; otherwise what became of it.
  std::string wait(Clock::time_point deadline);

private:
  // What it has started ends with it. Until it was waited for, no other group
  // has its number.
  void end() {
    if (process <= 0)
      return;
    kill(-process, SIGKILL);
    while (waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
    }
    process = 0;
  }

  pid_t process;
};

} // namespace

static void limitTo(pid_t process, decltype(RLIMIT_CPU) resource, rlim_t most) {
  const rlimit both = {most, most};
  (void)prlimit(process, resource, &both, nullptr);
}

// From outside, for nothing can be called between the start of the process and
// that of its program. It gets its input only then.
void Child::limit(const ChildLimits &limits) const {
  limitTo(process, RLIMIT_CORE, 0);
  limitTo(process, RLIMIT_CPU, limits.processorSeconds);
  if (limits.memory != 0)
    limitTo(process, RLIMIT_AS, limits.memory);
}

static std::string inWords(const siginfo_t &end) {
  if (end.si_code != CLD_EXITED)
    return "was ended by signal " + std::to_string(end.si_status);
  if (end.si_status != 0)
    return "ended with status " + std::to_string(end.si_status);
  return {};
}

std::string Child::wait(Clock::time_point deadline) {
  for (;;) {
    siginfo_t info = {};
    const int status = waitid(P_PID, static_cast<id_t>(process), &info,
                              WEXITED | WNOHANG | WNOWAIT);
    if (status != 0 && errno != EINTR) {
      process = 0; // the application has waited for it
      return {};
    }
    if (status == 0 && info.si_pid != 0) {
      end();
      return inWords(info);
    }
    if (Clock::now() >= deadline) {
      end();
      return "did not end";
    }
    (void)poll(nullptr, 0, 1);
  }
}

// The error that kept it from starting, or 0.
static int start(const std::vector<std::string> &words, int input, int output,
                 pid_t &process) {
  std::vector<char *> arguments;
  for (const std::string &word : words)
    arguments.push_back(const_cast<char *>(word.c_str()));
  arguments.push_back(nullptr);
  std::string language = "LC_ALL=C";
  char *const variables[] = {language.data(), nullptr};
  const ChildFiles files(input, output);
  const ChildAttributes attributes;
  return posix_spawn(&process, arguments[0], &files.actions,
                     &attributes.attributes, arguments.data(), variables);
}

static int remaining(Clock::time_point deadline) {
  const auto left =
      std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
  return static_cast<int>(
      std::clamp<std::chrono::milliseconds::rep>(left.count(), 0, 60000));
}

// Gives the child as much as it takes now. False when there is no more to give.
static bool feed(int descriptor, llvm::StringRef &input) {
  const platform::WriteSignals onlyFail;
  const ssize_t count = write(descriptor, input.data(), input.size());
  if (count < 0)
    return errno == EAGAIN || errno == EINTR;
  input = input.drop_front(static_cast<std::size_t>(count));
  return !input.empty();
}

// Takes what the child has written. False at its end.
static bool listen(int descriptor, std::string &output) {
  std::array<char, 65536> piece;
  const ssize_t count = read(descriptor, piece.data(), piece.size());
  if (count > 0)
    output.append(piece.data(), static_cast<std::size_t>(count));
  return count > 0 || (count < 0 && (errno == EAGAIN || errno == EINTR));
}

// Feeds and listens until the child has closed its output.
static ChildRun::End talk(Descriptor toChild, const Descriptor &fromChild,
                          llvm::StringRef input, const ChildLimits &limits,
                          Clock::time_point deadline, std::string &output) {
  if (input.empty())
    toChild.reset();
  for (;;) {
    std::array<pollfd, 2> ends = {
        {{fromChild.get(), POLLIN, 0}, {toChild.get(), POLLOUT, 0}}};
    const int ready = poll(ends.data(), ends.size(), remaining(deadline));
    if (Clock::now() >= deadline)
      return ChildRun::End::TooSlow;
    if (ready < 0 && errno != EINTR)
      return ChildRun::End::Failed;
    if (ready <= 0)
      continue;
    if (ends[1].revents != 0 && !feed(toChild.get(), input))
      toChild.reset();
    if (ends[0].revents != 0 && !listen(fromChild.get(), output))
      return ChildRun::End::Done;
    if (output.size() > limits.output)
      return ChildRun::End::TooMuchOutput;
  }
}

static std::string inWords(ChildRun::End end, const ChildLimits &limits) {
  switch (end) {
  case ChildRun::End::TooSlow:
    return "did not end within " +
           std::to_string(
               std::chrono::duration_cast<std::chrono::seconds>(limits.time)
                   .count()) +
           " s";
  case ChildRun::End::TooMuchOutput:
    return "wrote more than " + std::to_string(limits.output) + " bytes";
  default:
    return "could not be heard";
  }
}

ChildRun corvane::runChild(const std::vector<std::string> &words,
                           llvm::StringRef input, const ChildLimits &limits) {
  ChildRun run;
  const Clock::time_point deadline = Clock::now() + limits.time;
  Pipe toChild;
  Pipe fromChild;
  int error = toChild.isOpen() && fromChild.isOpen() ? 0 : errno;
  pid_t process = 0;
  if (error == 0)
    error =
        start(words, toChild.reading.get(), fromChild.writing.get(), process);
  if (error != 0) {
    run.why = std::string("cannot be started: ") + std::strerror(error);
    return run;
  }
  Child child(process);
  child.limit(limits);
  toChild.reading.reset();
  fromChild.writing.reset();
  (void)fcntl(toChild.writing.get(), F_SETFL, O_NONBLOCK);
  (void)fcntl(fromChild.reading.get(), F_SETFL, O_NONBLOCK);
  run.end = talk(std::move(toChild.writing), fromChild.reading, input, limits,
                 deadline, run.output);
  if (run.end != ChildRun::End::Done) {
    run.why = inWords(run.end, limits);
    return run;
  }
  run.why = child.wait(deadline);
  if (!run.why.empty())
    run.end = ChildRun::End::Failed;
  return run;
}
