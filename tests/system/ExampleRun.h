// Runs an example with layers, and tells what reached the OpenCL runtime.

#pragma once

#include "tests/system/Subprocess.h"

#include <ostream>

namespace corvane::test {

/// The built files that the tests work with.
std::string exampleProgram(const std::string &name);
std::string layerLibrary();
std::string agentLibrary();

/// The copy of the layer in the folder of a test agent.
std::string layerBeside(const std::string &testAgent);

/// A launch, and how many equal ones came in a row.
struct Launches {
  size_t count;
  std::string kernel, globalSize, localSize;

  /// Whether the other launches are equal to these; their number does not
  /// count.
  bool sameAs(const Launches &other) const {
    return kernel == other.kernel && globalSize == other.globalSize &&
           localSize == other.localSize;
  }
  bool operator==(const Launches &other) const {
    return count == other.count && sameAs(other);
  }
};

std::ostream &operator<<(std::ostream &out, const Launches &launches);

struct ExampleRun {
  ProgramRun program;
  std::vector<std::string> results; ///< the example's lines for scripts
  std::vector<Launches> launches;   ///< as they reached the runtime
};

/// Runs an example with \p layers, a list separated by colons that may be
/// empty, and with a layer between those and the runtime that observes the
/// launches.
ExampleRun runExample(const std::vector<std::string> &command,
                      const std::string &layers,
                      const Environment &changes = {});

/// Fails the test unless the example has printed \p results rows, all of them
/// with right values.
void expectAllRight(const ExampleRun &run, size_t results);

} // namespace corvane::test
