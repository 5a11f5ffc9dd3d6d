// A program that runs while the test does something else.

#pragma once

#include "tests/support/TempFolder.h"
#include "tests/system/Subprocess.h"

#include <sys/types.h>

namespace corvane::test {

/// One child process, which is killed at the end if it still runs.
class RunningHost {
public:
  /// Starts a program with \p environment and little else. A program that
  /// cannot be started fails the test.
  RunningHost(const std::vector<std::string> &command,
              const Environment &environment);
  ~RunningHost();
  RunningHost(const RunningHost &) = delete;
  RunningHost &operator=(const RunningHost &) = delete;

  /// Waits for a whole line of the program's output and returns it without its
  /// line feed; empty when the program has ended.
  std::string readLine();

  /// Sends the program an empty line.
  void goOn();

  /// Closes the program's input, waits for its end, and returns the exit code.
  int end();

  /// Whether the program has not ended by itself.
  bool isRunning() const;

  /// Lets no file that the program writes grow beyond \p bytes, as if the disk
  /// were full. The program must ignore the signal that comes with it.
  void limitFiles(unsigned long bytes) const;

  /// Kills the program by a signal that it cannot catch.
  void kill();

  /// What the program has written to standard error so far.
  std::string errors() const { return folder.read("err"); }

private:
  int wait();
  void closeInput();

  const TempFolder folder;
  pid_t child = -1;
  int input = -1;
  int output = -1;
};

} // namespace corvane::test
