// An open-addressed hash table of fixed size, with a spinning lock.

#include "tests/support/memory/LiveBlocks.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>

using namespace corvane::test;

namespace {
struct Block {
  void *memory;
  std::size_t size;
};

class SpinGuard {
public:
  SpinGuard() {
    while (taken.test_and_set(std::memory_order_acquire)) {
    }
  }
  ~SpinGuard() { taken.clear(std::memory_order_release); }
  SpinGuard(const SpinGuard &) = delete;
  SpinGuard &operator=(const SpinGuard &) = delete;

private:
  static std::atomic_flag taken;
};
std::atomic_flag SpinGuard::taken = ATOMIC_FLAG_INIT;
} // namespace

// More blocks than any test has at a time. The system gives the table's memory
// only as it is used.
static constexpr std::size_t places = std::size_t{1} << 22;
static Block blocks[places];
static std::atomic<std::size_t> blockCount{0};
static std::atomic<std::size_t> byteCount{0};

static std::size_t placeFor(const void *memory) {
  const auto bits = reinterpret_cast<std::uintptr_t>(memory) >> 4;
  return (bits * 0x9E3779B97F4A7C15U >> 20) % places;
}

// Where the block is, or the free place where it would be.
static std::size_t find(const void *memory) {
  std::size_t place = placeFor(memory);
  while (blocks[place].memory && blocks[place].memory != memory)
    place = (place + 1) % places;
  return place;
}

// Moves the blocks that would no longer be found after a free place.
static void closeGap(std::size_t gap) {
  std::size_t place = gap;
  while (true) {
    blocks[gap] = {};
    do {
      place = (place + 1) % places;
      if (!blocks[place].memory)
        return;
    } while ((placeFor(blocks[place].memory) + places - gap - 1) % places <
             (place + places - gap) % places);
    blocks[gap] = blocks[place];
    gap = place;
  }
}

void LiveBlocks::add(void *memory, std::size_t size) {
  const SpinGuard guard;
  if (blockCount > places / 2)
    std::abort();
  blocks[find(memory)] = {memory, size};
  ++blockCount;
  byteCount += size;
}

void LiveBlocks::remove(void *memory) {
  if (blockCount == 0)
    return;
  const SpinGuard guard;
  const std::size_t place = find(memory);
  if (!blocks[place].memory)
    return;
  --blockCount;
  byteCount -= blocks[place].size;
  closeGap(place);
}

std::size_t LiveBlocks::count() { return blockCount; }

std::size_t LiveBlocks::bytes() { return byteCount; }
