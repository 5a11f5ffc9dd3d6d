// Takes the state away, makes the results from the log, and retires the state.

#include "session/Flush.h"

#include "agent/AgentState.h"
#include "agent/Environment.h"
#include "agent/ErrorStream.h"
#include "agent/Flags.h"
#include "base/ForkedChild.h"
#include "base/Platform.h"
#include "results/Files.h"
#include "results/ResultFiles.h"
#include "session/LogAppender.h"
#include "session/ProfileSummary.h"
#include "session/TuningRun.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <thread>

using namespace corvane;

// The user is told of files that were refused, and of no other failure.
static void reportRefused(llvm::Error errors) {
  llvm::handleAllErrors(
      std::move(errors),
      [](const FileError &error) {
        if (error.reason() == FileError::Reason::Refused)
          reportRefusedFile(error.path());
      },
      [](const llvm::ErrorInfoBase &) {});
}

static bool failed(llvm::Error error) {
  return llvm::errorToBool(std::move(error));
}

int corvane::ensureOutputDir(const ReportJob &job) {
  if (failed(createOutputFolder(job)))
    return 1;
  return failed(createPageFolder(job)) ? 2 : 0;
}

int corvane::readCSV(ReportJob &job) {
  reportRefused(readRawLog(job.logPath, job.configs));
  return 0;
}

int corvane::writeReport(ReportJob &job) {
  reportRefused(writeResultFiles(job));
  return 0;
}

// A thread that holds the lock writes a row, which does not take long, unless
// the end of the process has stopped it.
static std::unique_lock<std::mutex> lockUnlessStuck(std::mutex &mutex) {
  std::unique_lock<std::mutex> lock(mutex, std::try_to_lock);
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(1);
  while (!lock && !platform::otherThreadsAreGone() &&
         std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    (void)lock.try_lock();
  }
  return lock;
}

namespace {

/// A history to which no more runs are added. Holds its lock, if that could be
/// had, until the waiting rows are written.
class ClosedHistory {
public:
  explicit ClosedHistory(LaunchHistory &open)
      : history(open), lock(lockUnlessStuck(open.lock)),
        isOfTuning(lock && open.runFolder) {
    // Before the first request for memory: whatever fails, it is closed.
    history.open = false;
    folder = isOfTuning ? open.runFolder : outputDirectory(open.loadFolder);
  }

  /// Where the results go; none if no variable says so.
  const std::optional<std::string> &directory() const { return folder; }
  /// Whether they are those of a run that tunes.
  bool tunes() const { return isOfTuning; }
  /// Writes the rows that wait, and unlocks the history.
  void writeRows() {
    if (!lock)
      return;
    if (folder)
      writeWaitingRows(history, *folder);
    lock.unlock();
  }

private:
  LaunchHistory &history;
  std::unique_lock<std::mutex> lock;
  const bool isOfTuning;
  std::optional<std::string> folder;
};

} // namespace

static void runJob(ReportJob &job, ClosedHistory &history) {
  const int status = ensureOutputDir(job);
  history.writeRows();
  if (status != 0)
    return writeError("ensureOutputDir() error\n");
  if (readCSV(job) != 0)
    return writeError("readCSV() error\n");
  writeReport(job);
}

// None if the variable is not defined. Within a look, because a build on
// another thread may be moving variables.
static std::optional<std::string> givenInstallLocation() {
  const EnvironmentLook look;
  const char *location = look ? installLocation() : nullptr;
  if (!location)
    return std::nullopt;
  return normalizedLocation(location);
}

static void produceResults(ClosedHistory &history) {
  const std::optional<std::string> location = givenInstallLocation();
  if (!location) {
    history.writeRows();
    // A run that tunes has its record; the report is for those who ask for it.
    if (!history.tunes())
      writeError("CV: unable to find $CORVANE_INSTALL_LOCATION.\n");
    return;
  }
  ReportJob job;
  // If it was removed since the load, no directory can be created for it.
  job.outputDirectory = history.directory().value_or("");
  job.installLocation = *location;
  job.logPath = resultPath(job.outputDirectory, resultFile::rawLog);
  runJob(job, history);
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
  ClosedHistory history(*state->launchRecords);
  if (state->profileSummary)
    state->profileSummary->tell();
  if (state->tuningRun)
    state->tuningRun->close();
  if (autotuneOutput() || history.tunes())
    produceResults(history);
}

void corvane::flushAtDetach() {
  if (inForkedChild())
    return;
  try {
    flushAutotuneResults();
  } catch (const std::bad_alloc &) {
    // The process must end all the same: the results are lost.
  }
}
