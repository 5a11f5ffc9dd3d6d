// Defines the record types, without contents: no test here needs any.

#include "TestState.h"

#include "agent/Flags.h"
#include "session/LogAppender.h"

struct corvane::BufferRecord {};
struct corvane::KernelRecord {};
struct corvane::ProgramRecord {};

using namespace corvane;
using namespace corvane::test;

AgentState::AgentState() : launchRecords(std::make_shared<LaunchHistory>()) {}

AgentState::~AgentState() = default;

static int destroyed = 0;

static void destroyState(AgentState *state) {
  ++destroyed;
  delete state;
}

TestState::TestState() {
  auto state = std::make_unique<AgentState>();
  launches = state->launchRecords;
  destroyed = 0;
  setAutotuneOutput(true);
  installAgentState(state.release(), destroyState);
}

TestState::~TestState() {
  retireAgentState(takeAgentState());
  setAutotuneOutput(false);
}

LaunchRecord &TestState::addLaunch(const std::string &kernel,
                                   std::uint32_t workDim,
                                   std::array<std::size_t, 3> globalSize,
                                   std::array<std::size_t, 3> localSize) {
  const std::shared_ptr<LaunchRecord> record = launches->makeRecord(
      makeLaunchKey(kernel, {workDim, globalSize, localSize}));
  const std::lock_guard<std::mutex> lock(launches->lock);
  launches->records.push_back(record);
  return *record;
}

void TestState::complete(LaunchRecord &record, const std::string &version,
                         std::uint64_t nanoseconds) {
  const std::lock_guard<std::mutex> lock(launches->lock);
  record.timings.push_back({&launches->shared(version), nanoseconds});
  appendTiming(*launches, record);
}

int TestState::destroyedStates() { return destroyed; }
