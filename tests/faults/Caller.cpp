// Compares the answer of each call with the runtime's, and looks for traces.

#include "tests/faults/Caller.h"

#include "tests/support/AgentMemory.h"

#include "gtest/gtest.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <new>

using namespace corvane::test;

bool Caller::load() {
  return tryTwice("the load", [this] { return boundary.load(); });
}

// If the unload throws, there are no results, or not all of them.
void Caller::unload() {
  boundary.forgetAnswers();
  try {
    boundary.unload();
    endRefusals();
  } catch (const std::bad_alloc &) {
    EXPECT_TRUE(endRefusals()) << "The unload threw unasked";
    expectFreeLock();
  }
  lookBack();
}

bool Caller::tryTwice(const char *entry, const std::function<cl_int()> &call) {
  refused.clear();
  return attempt(entry, call) || attempt(entry, call);
}

bool Caller::tryOnce(const char *entry, const std::function<cl_int()> &call) {
  refused.clear();
  return attempt(entry, call);
}

bool Caller::attempt(const char *entry, const std::function<cl_int()> &call) {
  boundary.forgetAnswers();
  runtime.forgetTranscript();
  try {
    const cl_int status = call();
    endRefusals();
    lookBack();
    expectAnswer(entry, status);
    return status == CL_SUCCESS;
  } catch (const std::bad_alloc &) {
    EXPECT_TRUE(endRefusals()) << entry << " threw unasked";
    lookBack();
    expectNothingDone(entry);
    expectFreeLock();
    return false;
  }
}

// Returns whether a request was refused. A refusal that is planned for later
// stays planned.
bool Caller::endRefusals() {
  if (!AgentMemory::hasRefused())
    return false;
  memoryRefused = true;
  return AgentMemory::refuseNothing();
}

void Caller::lookBack() {
  answers = boundary.answers();
  taken.clear();
  const std::vector<std::string> launches =
      runtime.transcript({"clEnqueueNDRangeKernel"});
  auto launch = launches.begin();
  for (const Answered &answer : answers) {
    allCalls.insert(answer.entry);
    if (answer.status == CL_SUCCESS)
      ++worked[answer.entry];
    else
      refused.insert(answer.entry);
    if (answer.entry != "clEnqueueNDRangeKernel")
      continue;
    if (answer.status == CL_SUCCESS)
      taken.push_back(*launch);
    ++launch;
  }
}

bool Caller::kernelRan() const {
  return std::any_of(taken.begin(), taken.end(), [this](const auto &launch) {
    return !tunes || launch.find("_coarsed_") == std::string::npos;
  });
}

std::size_t Caller::callsThatWorked(const std::string &entry) const {
  const auto found = worked.find(entry);
  return found == worked.end() ? 0 : found->second;
}

// Of several calls to the entry the first is the application's if the agent
// makes the same call for its variants then; otherwise, where the agent
// prepares or repeats, the last.
static bool comesFirst(const std::string &entry) {
  return entry == "clCreateKernel" || entry == "clReleaseKernel" ||
         entry == "clSetKernelArg";
}

void Caller::expectAnswer(const std::string &entry, cl_int status) const {
  std::vector<cl_int> given;
  for (const Answered &answer : answers)
    if (answer.entry == entry)
      given.push_back(answer.status);
  if (entry == "the load") {
    EXPECT_EQ(status, answers.back().status);
    return;
  }
  // The agent itself refuses an array for more kernels than it knows of.
  if (entry == "clCreateKernelsInProgram" && status == CL_INVALID_VALUE &&
      wasRefused(entry.c_str()))
    return;
  // A launch without variants that cannot be timed returns the failure of that.
  if (entry == "clEnqueueNDRangeKernel" && wasRefused("clSetEventCallback") &&
      status != CL_SUCCESS && given == std::vector<cl_int>{CL_SUCCESS})
    return;
  ASSERT_FALSE(given.empty()) << entry << " did not reach the runtime";
  EXPECT_EQ(status, comesFirst(entry) ? given.front() : given.back()) << entry;
}

// After an exception the application makes the call again.
void Caller::expectNothingDone(const std::string &entry) const {
  EXPECT_FALSE(kernelRan()) << entry << " threw after its launch";
}

// The lock is recursive, so only another thread notices that it is held.
void Caller::expectFreeLock() {
  const auto setNothing = [this] {
    return boundary.table().clSetKernelArg(nullptr, 0, 0, nullptr);
  };
  auto answer = std::async(std::launch::async, setNothing);
  if (answer.wait_for(std::chrono::seconds(60)) == std::future_status::ready)
    return;
  std::fputs("The agent's lock was not released by an exception.\n", stderr);
  std::abort(); // the other thread cannot be joined
}
