// Reads the log back, writes the report, and lets the state go.

#include "results/Flush.h"

#include "agent/AgentState.h"
#include "agent/DebugLog.h"
#include "agent/Environment.h"
#include "agent/Flags.h"
#include "agent/platform/Platform.h"
#include "results/InstallLocation.h"
#include "results/RawTimingLog.h"
#include "results/ReportWriter.h"
#include "results/ResultsReader.h"

#include <memory>
#include <mutex>

using namespace corvane;

int corvane::ensureOutputDir(const ReportJob &job) {
  if (!platform::createDirectory(job.outputDirectory.c_str()))
    return 1;
  const std::string html =
      job.outputDirectory + platform::directorySeparator + "html";
  return platform::createDirectory(html.c_str()) ? 0 : 2;
}

static void runJob(ReportJob &job) {
  if (ensureOutputDir(job) != 0)
    return writeError("ensureOutputDir() error\n");
  if (readCSV(job) != 0)
    return writeError("readCSV() error\n");
  writeReport(job);
}

// False without an install location. A build on another thread may be moving
// variables.
static bool readEnvironment(ReportJob &job) {
  const EnvironmentLook look;
  const char *location = installLocation();
  if (!location)
    return false;
  // If it was removed since the load, no directory can be created for it.
  const char *directory = resultsDir();
  job.outputDirectory = directory ? directory : "";
  job.installLocation = normalizedLocation(location);
  return true;
}

static void produceResults() {
  ReportJob job;
  if (!readEnvironment(job))
    return writeError("CV: unable to find $CORVANE_INSTALL_LOCATION.\n");
  job.logPath = rawLogPath(job.outputDirectory);
  runJob(job);
}

// Lets a row that is being written be finished first, if that needs no waiting.
static void closeHistory(LaunchHistory &history) {
  const std::unique_lock<std::mutex> lock(history.lock, std::try_to_lock);
  history.open = false;
}

namespace {

struct RetireState {
  void operator()(AgentState *state) const { retireAgentState(state); }
};

} // namespace

void corvane::flushAutotuneResults() {
  const std::unique_ptr<AgentState, RetireState> state(takeAgentState());
  if (!state)
    return;
  closeHistory(*state->launchRecords);
  if (autotuneOutput())
    produceResults();
}
