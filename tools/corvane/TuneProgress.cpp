// Looks at the records of the runs five times a second.

#include "tools/corvane/TuneProgress.h"

#include "results/NumberText.h"
#include "results/overview/Words.h"
#include "tools/corvane/StatusLine.h"
#include "tools/corvane/Terminal.h"

#include <algorithm>
#include <chrono>

using namespace corvane;

TuneProgress::TuneProgress(const std::string &folder,
                           std::set<std::string> known,
                           std::optional<double> budget)
    : follower(folder, std::move(known)), mostSeconds(budget) {
  if (errorTerminal())
    thread = startThread([this] { run(); });
}

TuneProgress::~TuneProgress() {
  if (!thread.joinable())
    return;
  {
    const std::lock_guard<std::mutex> guard(lock);
    isOver = true;
  }
  changed.notify_all();
  thread.join();
}

std::string TuneProgress::text() const {
  std::string line = "corvane: " + std::to_string(follower.decided()) + " of " +
                     counted(follower.seen(), "configuration decided, ",
                             "configurations decided, ") +
                     counted(follower.samples(), "timed run", "timed runs");
  if (follower.bestGain() > 0.0)
    line += ", best so far " + gainText(follower.bestGain()) + " (" +
            follower.bestKernel() + ")";
  const double seconds = follower.secondsMeasured();
  line += ", about " + fixedText(seconds, 1) + " s added";
  if (mostSeconds)
    line +=
        ", " + fixedText(std::max(0.0, *mostSeconds - seconds), 0) + " s left";
  return line;
}

void TuneProgress::run() {
  StatusLine status;
  std::unique_lock<std::mutex> guard(lock);
  while (!changed.wait_for(guard, std::chrono::milliseconds(200),
                           [this] { return isOver; })) {
    follower.update();
    if (follower.seen() != 0)
      status.show(text());
  }
}
