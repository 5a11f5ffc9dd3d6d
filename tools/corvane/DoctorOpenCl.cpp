// Says what was found of loader, layer, agent, platforms and devices.

#include "tools/corvane/Doctor.h"
#include "tools/corvane/Library.h"

using namespace corvane;

static void examineLoader(Findings &findings, const ProbedOpenCl &probed) {
  const std::string version =
      probed.loaderVersion.empty() ? "" : " (" + probed.loaderVersion + ")";
  findings.ok("OpenCL loader " + probed.loader + version);
  if (probed.platformCount == 0)
    return; // a loader without platforms need not load layers
  if (!probed.takesLayers)
    findings.fail("the loader has not loaded the layer",
                  "install ocl-icd 2.3.1 or newer, or the Khronos loader, and "
                  "let no other libOpenCL come first in the search path");
  else if (!probed.agentStarted)
    findings.fail("the layer has not started the agent library",
                  "keep both libraries in one folder; what the layer "
                  "wrote on standard error says more");
  else
    findings.ok("the loader takes the layer, and the layer has started the "
                "agent");
}

static void examineDevice(Findings &findings, const ProbedDevice &device) {
  const std::string name =
      "device " + device.name + ", driver " + device.driver;
  if (device.problem.empty())
    findings.ok(name +
                ": builds from source, runs a kernel and tells its time");
  else
    findings.warn(name, device.problem + ", so nothing is tuned on it");
}

void corvane::examineOpenCl(Findings &findings, const ProbedOpenCl &probed) {
  if (probed.loader.empty()) {
    findings.fail(std::string("there is no OpenCL loader (") + loaderFile + ")",
                  "install one; on Debian: ocl-icd-libopencl1");
    return;
  }
  examineLoader(findings, probed);
  if (!probed.endedAt.empty())
    findings.fail("the driver ended or stopped a process at " + probed.endedAt,
                  "try another driver");
  else if (probed.platformCount == 0)
    findings.fail("there is no OpenCL platform", "install a driver");
  for (const std::string &platform : probed.platforms)
    findings.ok("platform " + platform);
  if (!probed.platforms.empty() && probed.devices.empty() &&
      probed.endedAt.empty())
    findings.fail("no platform has a device", "look at the driver's own tools");
  for (const ProbedDevice &device : probed.devices)
    examineDevice(findings, device);
}
