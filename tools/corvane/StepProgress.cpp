// Draws the line over itself.

#include "tools/corvane/StepProgress.h"

#include "tools/corvane/Terminal.h"

using namespace corvane;

StepProgress::StepProgress(std::string what, std::size_t stepCount)
    : text(std::move(what)), count(stepCount),
      isTerminal(errorTerminal().has_value()),
      nextDraw(Clock::now() + std::chrono::seconds(1)) {}

StepProgress::~StepProgress() {
  if (isDrawn)
    writeToTerminal("\r\033[K");
}

void StepProgress::step() {
  ++done;
  const Clock::time_point now = Clock::now();
  if (!isTerminal || now < nextDraw)
    return;
  nextDraw = now + std::chrono::milliseconds(200);
  isDrawn = true;
  writeToTerminal("\rcorvane: " + text + " " + std::to_string(done) + " of " +
                  std::to_string(count) + "\033[K");
}
