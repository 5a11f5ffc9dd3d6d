// Makes one move after the other, from load to unload.

#include "tests/fuzz/sequence/Play.h"

#include "agent/Environment.h"

#include <algorithm>

using namespace corvane;
using namespace corvane::fuzz;

static constexpr std::size_t mostMoves = 100;

using Move = void (*)(Play &);

// A move that is listed more often is chosen more often.
static constexpr Move moves[] = {launch,
                                 launch,
                                 launch,
                                 launch,
                                 launch,
                                 launch,
                                 startWithVariants,
                                 startWithVariants,
                                 addProgram,
                                 buildProgram,
                                 buildProgram,
                                 createKernel,
                                 createKernel,
                                 setAllArguments,
                                 setArgument,
                                 createBuffer,
                                 createProgram,
                                 linkProgram,
                                 queryProgram,
                                 retainProgram,
                                 releaseProgram,
                                 retainKernel,
                                 releaseKernel,
                                 createKernelsInProgram,
                                 retainBuffer,
                                 releaseBuffer,
                                 releaseEvent,
                                 createQueue,
                                 releaseQueue,
                                 releaseContext,
                                 reload,
                                 changeEnvironment,
                                 scriptFailure,
                                 scriptDevice,
                                 holdCommands,
                                 completeCommands};

Play::Play(Input &bytes, const OutputFolder &outputFolder, ErrorText &errorText)
    : input(bytes), recorder(runtime.ownTable()), folder(outputFolder),
      errors(errorText) {}

void Play::define(const char *name, const char *value) {
  variables.try_emplace(name, name, nullptr).first->second.set(value);
}

void Play::defineDirectory(bool defined) {
  define(variable::autotune,
         defined ? folder.path().string().c_str() : nullptr);
}

void Play::noteLoad() {
  check(agent->status() == CL_SUCCESS, "the agent loads");
  tuning = std::getenv(variable::autotune) != nullptr;
  hasState = true;
}

void Play::loadAgain() {
  rowsUnknown = true;
  agent->loadAgain();
  noteLoad();
}

void Play::flushed() {
  rowsUnknown = true;
  // Variants that exist when the results are written are never released.
  kernelsLost |= hasState && !kernels.empty();
  hasState = false;
}

bool Play::isGone(cl_mem buffer) const {
  return buffer && std::none_of(buffers.begin(), buffers.end(),
                                [buffer](const HeldBuffer &held) {
                                  return held.handle == buffer;
                                });
}

Heard Play::onlyCall(const char *entry) const {
  const auto calls = recorder.heard(entry);
  if (calls.size() != 1)
    fail(std::string(entry) + " reaches the runtime once");
  return calls.front();
}

void Play::move() {
  recorder.forget();
  runtime.forgetTranscript();
  moves[input.below(std::size(moves))](*this);
  checkAlways();
}

// Ends everything: commands, then objects, then the agent.
void Play::finish() {
  for (const cl_event event : userEvents) {
    runtime.endEvent(event);
    recorder.below().clReleaseEvent(event);
  }
  userEvents.clear();
  runtime.late(false);
  runtime.holdCallbacks(false);
  runtime.runAll();
  runtime.fireCallbacks();
  holdsCallbacks = callbacksMayBeHeld = false;
  checkContents();
  checkRows();

  input = Input("");
  while (!events.empty() || !kernels.empty() || !buffers.empty() ||
         !programs.empty() || !queues.empty())
    for (const Move release : {releaseEvent, releaseKernel, releaseBuffer,
                               releaseProgram, releaseQueue}) {
      recorder.forget();
      release(*this);
      checkAlways();
      if (failing)
        return;
    }
}

void Play::run() {
  const bool tunes = input.flag();
  if (tunes)
    folder.empty();
  defineDirectory(tunes);
  define(variable::installLocation, input.below(4) == 1 ? nullptr : "/opt/x");
  define(variable::flushOnReleaseContext, input.below(4) == 1 ? "1" : nullptr);
  define(variable::dumpLog, input.below(8) == 1 ? "log" : nullptr);
  agent.emplace(runtime);
  noteLoad();
  for (std::size_t i = 0; i != mostMoves && !input.empty(); ++i)
    move();
  finish();
  agent->unload();
  checkEnd();
  checkErrorText();
  (void)runtime.misuses();
}
