// Runs the built program corvane with folders and records that a test makes up.

#pragma once

#include "results/runs/RunLines.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <list>
#include <string>
#include <vector>

namespace corvane::test {

/// Runs corvane in a folder of the test's own, and without those of the user's
/// environment variables that matter to it.
class CorvaneTest : public testing::Test {
protected:
  CorvaneTest();

  /// How a program ended, and what it wrote.
  struct Outcome {
    int exitCode = -1;
    std::string out;
    std::string err;
  };

  /// Runs \p command and waits. The first word is the path of a program; the
  /// program gets the others as they are. They must not have quotation marks.
  Outcome runProgram(const std::vector<std::string> &command) const;

  /// Runs corvane with these arguments.
  Outcome corvane(std::vector<std::string> arguments) const;

  /// Runs "corvane tune" with the test's folder as its output, on the
  /// application with \p arguments. No variants are generated.
  Outcome tuned(const std::vector<std::string> &arguments) const;

  /// Defines a variable for the length of the test.
  void define(const char *name, const std::string &value) {
    variables.emplace_back(name, value);
  }

  /// Writes the record of a run to a file; returns its path.
  std::string recordFile(const std::string &name,
                         const std::vector<RunLine> &lines) const;

  /// Makes a tuned folder with the record of one run called "a"; returns its
  /// path.
  std::string tunedFolder(const std::string &name,
                          const std::vector<RunLine> &lines) const;

  std::string output() const { return folder.file("tuned"); }
  std::string profile() const { return folder.read("tuned/profile.json"); }

  /// A path as corvane writes those that it makes: with "/" on every system.
  static std::string written(const std::string &path) {
    return std::filesystem::absolute(path).generic_string();
  }
  static std::string layer() { return written(LAYER_FILE); }

  TempFolder folder;

private:
  std::list<EnvGuard> variables;
};

/// The end of a record whose first configuration is number 3, with so many
/// launches of it.
EndLine endAfterLaunches(std::uint64_t launches);

/// A run on one device of a program with the kernel "scale", whose variant is
/// faster: 50 to 100 microseconds, seven times.
std::vector<RunLine> fasterVariant();

/// The start of a record: process, device and a program with these kernels.
std::vector<RunLine> startOfRun(std::vector<KernelVariants> kernels);

/// A configuration of \p kernel with 1024 work-items and seven samples of the
/// original at \p original and of g0S4 at \p variant microseconds.
void addConfiguration(std::vector<RunLine> &lines, const std::string &kernel,
                      double original, double variant);

} // namespace corvane::test
