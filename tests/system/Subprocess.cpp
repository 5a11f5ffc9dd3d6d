// Starts a child process whose output goes to files, and waits for it.

#include "tests/system/Subprocess.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;

namespace {

/// Where the child's output goes.
class Redirection {
public:
  Redirection(const std::string &out, const std::string &err) {
    constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(),
                                     flags, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(),
                                     flags, 0600);
  }
  ~Redirection() { posix_spawn_file_actions_destroy(&actions); }
  Redirection(const Redirection &) = delete;
  Redirection &operator=(const Redirection &) = delete;

  const posix_spawn_file_actions_t *get() const { return &actions; }

private:
  posix_spawn_file_actions_t actions;
};

} // namespace

static bool isPrivate(const std::string &name) {
  for (const char *prefix : {"CORV", "AGENT_", "OPENCL_LAYERS", "LAUNCH_"})
    if (name.compare(0, std::strlen(prefix), prefix) == 0)
      return true;
  return false;
}

static test::Environment environmentWith(const test::Environment &changes) {
  test::Environment all;
  for (char **variable = environ; *variable; ++variable) {
    const std::string text = *variable;
    const std::string name = text.substr(0, text.find('='));
    if (name.size() < text.size() && !isPrivate(name))
      all[name] = text.substr(name.size() + 1);
  }
  for (const auto &[name, value] : changes)
    all[name] = value;
  return all;
}

std::vector<char *> corvane::test::pointersTo(std::vector<std::string> &texts) {
  std::vector<char *> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string &text : texts)
    pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

/// The exit code, or minus the number of the signal that ended the child.
static int waitFor(pid_t child) {
  int status = 0;
  if (waitpid(child, &status, 0) != child)
    return -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

test::ProgramRun test::runProgram(const std::vector<std::string> &command,
                                  const Environment &changes) {
  std::vector<std::string> words = command;
  std::vector<std::string> variables;
  for (const auto &[name, value] : environmentWith(changes))
    variables.emplace_back(name).append("=").append(value);

  const TempFolder folder;
  const Redirection redirection(folder.file("out"), folder.file("err"));
  pid_t child = 0;
  const int error =
      posix_spawnp(&child, words[0].c_str(), redirection.get(), nullptr,
                   pointersTo(words).data(), pointersTo(variables).data());
  ProgramRun run;
  if (error != 0) {
    ADD_FAILURE() << "cannot run " << words[0] << ": " << std::strerror(error);
    return run;
  }
  run.exitCode = waitFor(child);
  run.out = folder.read("out");
  run.err = folder.read("err");
  return run;
}

std::vector<std::string> test::linesOf(const std::string &text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);)
    lines.push_back(line);
  return lines;
}
