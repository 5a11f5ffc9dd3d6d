// Running an example with layers, and what reached the OpenCL runtime.

#pragma once

#include "tests/system/Subprocess.h"

#include <ostream>

namespace corvane::test {

/// The built files that the tests work with.
std::string exampleProgram(const std::string &name);
std::string layerLibrary();
std::string agentLibrary();

/// The copy of the layer that lies beside a test agent.
std::string layerBeside(const std::string &testAgent);

/// Equal launches that followed each other.
struct Launches {
  size_t count;
  std::string kernel, globalSize, localSize;

  /// Whether the other launches are like these, however many they are.
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

/// Runs an example below \p layers, a list separated by colons that may be
/// empty, and above a layer that observes the launches.
ExampleRun runExample(const std::vector<std::string> &command,
                      const std::string &layers,
                      const Environment &changes = {});

/// Fails the test unless the example says that all of \p results rows of
/// launches gave right values.
void expectAllRight(const ExampleRun &run, size_t results);

} // namespace corvane::test
