// Describes the OpenCL of this machine, in a process that may be ended by a
// driver.

#pragma once

#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// A device, and what came of running a kernel on it.
struct ProbedDevice {
  std::string platform;
  std::string name;
  std::string vendor;
  std::string driver;
  bool hasCompiler = false;
  /// Empty: a kernel ran and its time was told. Otherwise what failed.
  std::string problem;
};

struct ProbedOpenCl {
  std::string loader;        ///< file; empty: there is none
  std::string loaderVersion; ///< as it tells itself; may be empty
  bool takesLayers = false;  ///< whether it has loaded the layer
  bool agentStarted = false; ///< whether the layer has loaded the agent
  unsigned platformCount = 0;
  std::vector<std::string> platforms; ///< those that told their names
  std::vector<ProbedDevice> devices;
  /// Where the process ended if it did not come to its end: "device NAME".
  std::string endedAt;
};

/// With this as its first argument corvane does nothing but describeOpenCl.
inline constexpr const char *describeArgument = "--describe-opencl";

/// The words after describeArgument.
struct ProbeWords {
  std::string loader; ///< the file to load; the system looks for a bare name
  std::string layer;
  std::string agent;
  std::string output; ///< a file for what is found, a JSON object a line
};

/// Writes what it finds, each line as soon as it is known.
int describeOpenCl(const ProbeWords &words);

/// Describes it in a process of its own, which gets the variables as they are.
ProbedOpenCl probeOpenCl(const ProbeWords &words);

} // namespace corvane
