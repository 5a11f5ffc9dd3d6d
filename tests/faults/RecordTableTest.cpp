// Tests of tables of records for which there is no memory.

#include "agent/RecordTable.h"
#include "agent/MapGrowth.h"

#include "tests/support/AgentMemory.h"
#include "tests/support/Side.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <CL/cl.h>

#include <new>
#include <vector>

using namespace corvane;
using namespace corvane::test;

namespace {
struct Record {
  int number;
};

class Records : public testing::Test {
protected:
  static cl_mem handle(int number) {
    return reinterpret_cast<cl_mem>(std::uintptr_t(number) * 64 + 4096);
  }
  // Adds a record, the first time without the memory it takes, if it takes any.
  void append(int number) {
    auto record = std::make_unique<Record>(Record{number});
    const OnSide agent(Side::Agent);
    AgentMemory::refuse(1);
    try {
      table.append(handle(number), std::move(record));
    } catch (const std::bad_alloc &) {
      ++refusals;
      table.append(handle(number), std::make_unique<Record>(Record{number}));
    }
    AgentMemory::refuseNothing();
  }

  RecordTable<cl_mem, Record> table;
  int refusals = 0;
};
} // namespace

TEST_F(Records, AreAllFoundAfterATableCouldNotGrow) {
  for (int i = 0; i != 1000; ++i)
    append(i);
  EXPECT_EQ(refusals, 6); // 64 places, and twice as many five times
  for (int i = 0; i != 1000; ++i)
    EXPECT_EQ(table.find(handle(i))->number, i);
}

TEST_F(Records, OfOneHandleAreKeptInOrderAfterThereWasNoMemory) {
  append(7);
  for (int i = 0; i != 5; ++i)
    append(7);
  EXPECT_GT(refusals, 1);
  for (int i = 0; i != 6; ++i)
    EXPECT_EQ(table.remove(handle(7))->number, 7);
  EXPECT_EQ(table.remove(handle(7)), nullptr);
}

TEST_F(Records, ComeAndGoInATableThatNeedNotGrowForThem) {
  for (int i = 0; i != 10000; ++i) {
    append(i);
    EXPECT_EQ(table.remove(handle(i))->number, i);
  }
  // Places of the gone are cleared away now and then, in as much memory again.
  EXPECT_GT(refusals, 1);
  const std::size_t before = AgentMemory::requests();
  for (int i = 0; i != 40; ++i)
    append(i);
  EXPECT_LE(AgentMemory::requests(), before + 2 * 2);
}

// The order in which a map is walked is what decides between variants.
TEST(MapGrowth, LeavesEntriesInTheOrderThatTheMapItselfWouldGiveThem) {
  llvm::DenseMap<int *, int> usual;
  llvm::DenseMap<int *, int> prepared;
  for (std::uintptr_t i = 1; i != 3000; ++i) {
    auto *key = reinterpret_cast<int *>(i * i * 48);
    usual[key] = static_cast<int>(i);
    makeRoomForOne(prepared);
    prepared[key] = static_cast<int>(i);
    ASSERT_EQ(usual.getMemorySize(), prepared.getMemorySize());
  }
  std::vector<int> expected;
  for (const auto &entry : usual)
    expected.push_back(entry.second);
  std::vector<int> found;
  for (const auto &entry : prepared)
    found.push_back(entry.second);
  EXPECT_EQ(found, expected);
}
