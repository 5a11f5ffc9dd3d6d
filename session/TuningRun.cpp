// Starts the run with the first launch, counts, and ends it.

#include "session/TuningRun.h"

#include "agent/ErrorStream.h"
#include "session/LaunchHistory.h"
#include "session/LogAppender.h"
#include "session/RunFolder.h"

#include <new>

using namespace corvane;

TuningRun::TuningRun(std::string tunedFolder,
                     std::shared_ptr<LaunchHistory> launchesOfProcess)
    : folder(std::move(tunedFolder)), history(std::move(launchesOfProcess)) {}

bool TuningRun::start() {
  const ProcessLine process = describeProcess();
  std::optional<std::string> runFolder = makeRunFolder(folder, process);
  if (!runFolder) {
    isRefused = true;
    writeError(inOneLine("CV: no run folder could be made in " + folder +
                         ": nothing is tuned.") +
               "\n");
    return false;
  }
  log = std::make_unique<RunLog>(*runFolder, process);
  const std::lock_guard<std::mutex> guard(history->lock);
  createRawLog(*runFolder);
  history->runFolder = std::move(runFolder);
  return true;
}

bool TuningRun::countLaunch() {
  const std::lock_guard<std::mutex> guard(lock);
  ++launches;
  return log || (!isRefused && start());
}

void TuningRun::countVersion(std::uint32_t configuration,
                             const std::string &version) {
  const std::lock_guard<std::mutex> guard(lock);
  ++byVersion[{configuration, version}];
}

void TuningRun::countTuning(double seconds, bool hasSamples) {
  const std::lock_guard<std::mutex> guard(lock);
  secondsAdded += seconds;
  tunedLaunches += hasSamples ? 1 : 0;
}

void TuningRun::close() {
  const std::unique_lock<std::mutex> guard(lock, std::try_to_lock);
  if (!guard || !log)
    return;
  try {
    log->close(endLine());
  } catch (const std::bad_alloc &) {
    // The other results can be written all the same.
  }
}

EndLine TuningRun::endLine() const {
  EndLine end;
  end.launches = launches;
  end.tunedLaunches = tunedLaunches;
  end.secondsAdded = secondsAdded;
  for (const auto &[key, count] : byVersion)
    end.byVersion.push_back({key.first, key.second, count});
  return end;
}
