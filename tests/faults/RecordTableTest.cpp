// Tests of tables of records for which there is no memory.

#include "agent/RecordTable.h"

#include "tests/support/AgentMemory.h"
#include "tests/support/Side.h"

#include "gtest/gtest.h"

#include <CL/cl.h>

#include <new>

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
  EXPECT_EQ(refusals, 1000);
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

// The caller may still have to clean up what the record describes.
TEST_F(Records, StayWithTheCallerWhenThereIsNoMemory) {
  for (int number : {1, 1}) {
    auto record = std::make_unique<Record>(Record{number});
    const OnSide agent(Side::Agent);
    AgentMemory::refuse(1);
    EXPECT_THROW(table.append(handle(1), std::move(record)), std::bad_alloc);
    AgentMemory::refuseNothing();
    EXPECT_NE(record, nullptr); // NOLINT(bugprone-use-after-move)
    table.append(handle(1), std::move(record));
  }
  EXPECT_EQ(table.size(), 2U);
}
