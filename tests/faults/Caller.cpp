// Makes an application's calls and looks at what comes of them.

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
  return tryTwice("the load", [this] { return frontier.load(); });
}

// An exception means that there are no results, or not all of them.
void Caller::unload() {
  frontier.forgetAnswers();
  try {
    frontier.unload();
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
  frontier.forgetAnswers();
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

// Returns whether something was refused. What is planned for later stays.
bool Caller::endRefusals() {
  if (!AgentMemory::hasRefused())
    return false;
  memoryRefused = true;
  return AgentMemory::refuseNothing();
}

void Caller::lookBack() {
  answers = frontier.answers();
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

// Of several calls to the entry the application's own is the first where the
// agent follows with its variants, and the last where it prepares or repeats.
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
  // With place for more kernels than it knows of, the agent refuses on its
  // own.
  if (entry == "clCreateKernelsInProgram" && status == CL_INVALID_VALUE &&
      wasRefused(entry.c_str()))
    return;
  // A launch without variants that cannot be timed answers with that.
  if (entry == "clEnqueueNDRangeKernel" && wasRefused("clSetEventCallback") &&
      status != CL_SUCCESS && given == std::vector<cl_int>{CL_SUCCESS})
    return;
  ASSERT_FALSE(given.empty()) << entry << " did not reach the runtime";
  EXPECT_EQ(status, comesFirst(entry) ? given.front() : given.back()) << entry;
}

// Whoever gets an exception instead of an answer will call again.
void Caller::expectNothingDone(const std::string &entry) const {
  EXPECT_FALSE(kernelRan()) << entry << " threw after its launch";
}

// The lock is recursive, so only another thread can tell.
void Caller::expectFreeLock() {
  const auto setNothing = [this] {
    return frontier.table().clSetKernelArg(nullptr, 0, 0, nullptr);
  };
  auto answer = std::async(std::launch::async, setNothing);
  if (answer.wait_for(std::chrono::seconds(60)) == std::future_status::ready)
    return;
  std::fputs("The agent's lock was not released by an exception.\n", stderr);
  std::abort(); // the other thread cannot be joined
}
