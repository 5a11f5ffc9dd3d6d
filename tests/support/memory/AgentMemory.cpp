// Replaces the functions of the allocator in the whole process.

#include "tests/support/AgentMemory.h"

#include "tests/support/Side.h"
#include "tests/support/memory/Allocator.h"
#include "tests/support/memory/LiveBlocks.h"

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <limits>

using namespace corvane::test;

static constexpr std::size_t never = std::numeric_limits<std::size_t>::max();
static std::atomic<std::size_t> requestCount{0};
static std::atomic<std::size_t> firstRefused{never};
static std::atomic<std::size_t> lastRefused{never};
static std::atomic<bool> refused{false};

std::size_t AgentMemory::requests() { return requestCount; }

void AgentMemory::refuse(std::size_t nth) {
  lastRefused = requestCount + nth;
  firstRefused = requestCount + nth;
}

void AgentMemory::refuseFrom(std::size_t nth) {
  lastRefused = never;
  firstRefused = requestCount + nth;
}

bool AgentMemory::hasRefused() { return refused; }

bool AgentMemory::refuseNothing() {
  firstRefused = never;
  return refused.exchange(false);
}

std::size_t AgentMemory::liveBlocks() { return LiveBlocks::count(); }

std::size_t AgentMemory::liveBytes() { return LiveBlocks::bytes(); }

static bool isGranted() {
  const std::size_t number = ++requestCount;
  if (number < firstRefused || number > lastRefused)
    return true;
  refused = true;
  errno = ENOMEM;
  return false;
}

// Calls get() for memory. A request of the agent is counted, and may be
// refused.
template <typename Get> static void *serve(std::size_t size, Get get) {
  if (sideOfThread() == Side::Outside)
    return get();
  void *memory = isGranted() ? get() : nullptr;
  if (memory)
    LiveBlocks::add(memory, size);
  return memory;
}

#pragma GCC visibility push(default)
extern "C" {
void *malloc(std::size_t size) {
  return serve(size, [=] { return allocator::get(size); });
}

void *calloc(std::size_t count, std::size_t size) {
  return serve(count * size, [=] { return allocator::getZeroed(count, size); });
}

// To the counts, a block that grows is freed and requested again.
void *realloc(void *memory, std::size_t size) {
  return serve(size, [=] {
    LiveBlocks::remove(memory);
    return allocator::resize(memory, size);
  });
}

void free(void *memory) {
  LiveBlocks::remove(memory);
  allocator::giveBack(memory);
}
}
#pragma GCC visibility pop
