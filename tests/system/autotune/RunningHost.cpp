// Starts a child process with pipes and variables, and signals it.

#include "tests/system/autotune/RunningHost.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane::test;

// The program must not inherit the agent's variables but may need others of
// this machine, so those that it inherits are listed.
static std::vector<std::string> variablesOf(const Environment &environment) {
  std::vector<std::string> all;
  for (const char *name :
       {"PATH", "HOME", "TMPDIR", "LD_LIBRARY_PATH", "OCL_ICD_VENDORS",
        "ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS"})
    if (const char *value = std::getenv(name))
      all.push_back(std::string(name) + "=" + value);
  for (const auto &[name, value] : environment) {
    all.push_back(name);
    all.back().append("=").append(value);
  }
  return all;
}

RunningHost::RunningHost(const std::vector<std::string> &command,
                         const Environment &environment) {
  int in[2] = {-1, -1};
  int out[2] = {-1, -1};
  if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0)
    ADD_FAILURE() << std::strerror(errno);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO,
                                   folder.file("err").c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0600);
  std::vector<std::string> words = command;
  std::vector<std::string> variables = variablesOf(environment);
  const int error =
      posix_spawnp(&child, words[0].c_str(), &actions, nullptr,
                   pointersTo(words).data(), pointersTo(variables).data());
  posix_spawn_file_actions_destroy(&actions);
  close(in[0]);
  close(out[1]);
  input = in[1];
  output = out[0];
  if (error != 0) {
    child = -1;
    ADD_FAILURE() << "cannot run " << words[0] << ": " << std::strerror(error);
  }
}

RunningHost::~RunningHost() {
  if (child > 0)
    kill();
  closeInput();
  close(output);
}

std::string RunningHost::readLine() {
  std::string line;
  char next = 0;
  while (::read(output, &next, 1) == 1) {
    if (next == '\n')
      return line;
    line += next;
  }
  return {};
}

void RunningHost::goOn() { EXPECT_EQ(::write(input, "\n", 1), 1); }

void RunningHost::closeInput() {
  if (input >= 0)
    close(input);
  input = -1;
}

int RunningHost::wait() {
  int status = 0;
  const pid_t ended = child > 0 ? waitpid(child, &status, 0) : -1;
  child = -1;
  if (ended <= 0)
    return -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

int RunningHost::end() {
  closeInput();
  return wait();
}

bool RunningHost::isRunning() const {
  siginfo_t ended = {};
  return child > 0 &&
         waitid(P_PID, static_cast<id_t>(child), &ended,
                WEXITED | WNOHANG | WNOWAIT) == 0 &&
         ended.si_pid == 0;
}

void RunningHost::limitFiles(unsigned long bytes) const {
  ASSERT_GT(child, 0);
  const rlimit limit = {bytes, RLIM_INFINITY};
  EXPECT_EQ(prlimit(child, RLIMIT_FSIZE, &limit, nullptr), 0);
}

void RunningHost::kill() {
  // To the system, -1 means all processes.
  if (child <= 0)
    return;
  ::kill(child, SIGKILL);
  EXPECT_EQ(wait(), -SIGKILL) << errors();
}
