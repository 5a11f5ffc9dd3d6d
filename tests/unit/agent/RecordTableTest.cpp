// Tests of the table of records: it answers as a list that is searched from the
// front, at a cost that does not grow.
#include "agent/RecordTable.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>

namespace {

/// Plays a handle of OpenCL; counts how often the table looks at any.
struct Handle {
  std::uintptr_t number = 0;
};
long looks = 0;

bool operator==(Handle left, Handle right) {
  ++looks;
  return left.number == right.number;
}

struct Record {
  explicit Record(std::string called) : name(std::move(called)) {}
  std::string name;
};

} // namespace

template <> struct std::hash<Handle> {
  std::size_t operator()(Handle handle) const {
    return std::hash<std::uintptr_t>()(handle.number);
  }
};

namespace {

using Table = corvane::RecordTable<Handle, Record>;

void add(Table &table, Handle handle, const std::string &name) {
  table.append(handle, std::make_unique<Record>(name));
}

std::string nameOf(const Record *record) {
  return record ? record->name : "(none)";
}

TEST(RecordTable, FindsNothingWhenItIsEmpty) {
  Table table;
  EXPECT_EQ(table.find({1}), nullptr);
  EXPECT_EQ(table.remove({1}), nullptr);
  EXPECT_FALSE(table.isUnique({1}));
  EXPECT_EQ(table.size(), 0U);
}

TEST(RecordTable, FindsTheOldestRecordOfAHandle) {
  Table table;
  add(table, {1}, "old");
  add(table, {2}, "other");
  add(table, {1}, "young");
  EXPECT_EQ(nameOf(table.find({1})), "old");
  EXPECT_EQ(nameOf(table.find({2})), "other");
}

TEST(RecordTable, UncoversTheNextRecordWhenTheOldestIsRemoved) {
  Table table;
  for (const char *name : {"first", "second", "third"})
    add(table, {1}, name);
  EXPECT_EQ(nameOf(table.remove({1}).get()), "first");
  EXPECT_EQ(nameOf(table.find({1})), "second");
  EXPECT_EQ(nameOf(table.remove({1}).get()), "second");
  EXPECT_EQ(nameOf(table.remove({1}).get()), "third");
  EXPECT_EQ(table.find({1}), nullptr);
  EXPECT_EQ(table.size(), 0U);
}

TEST(RecordTable, CountsANullRecordAndNeverFindsIt) {
  Table table;
  EXPECT_EQ(table.append({1}, nullptr), nullptr);
  EXPECT_EQ(table.size(), 1U);
  EXPECT_EQ(table.find({1}), nullptr);
  add(table, {1}, "after it");
  EXPECT_EQ(nameOf(table.find({1})), "after it");
  EXPECT_TRUE(table.isUnique({1}));
  EXPECT_EQ(nameOf(table.remove({1}).get()), "after it");
  EXPECT_EQ(table.remove({1}), nullptr);
  EXPECT_EQ(table.size(), 1U);
}

TEST(RecordTable, KnowsWhetherARecordIsTheOnlyOneOfItsHandle) {
  Table table;
  add(table, {1}, "one");
  EXPECT_TRUE(table.isUnique({1}));
  add(table, {1}, "another");
  EXPECT_FALSE(table.isUnique({1}));
  table.remove({1});
  EXPECT_TRUE(table.isUnique({1}));
}

TEST(RecordTable, TakesEveryHandle) {
  for (const std::uintptr_t number :
       {std::uintptr_t{0}, UINTPTR_MAX, UINTPTR_MAX - 1, UINTPTR_MAX << 12}) {
    Table table;
    add(table, {number}, "x");
    EXPECT_EQ(nameOf(table.find({number})), "x");
    EXPECT_EQ(nameOf(table.remove({number}).get()), "x");
  }
}

TEST(RecordTable, FindsARecordInTheSameTimeHoweverManyThereAre) {
  constexpr std::uintptr_t count = 20000;
  Table table;
  for (std::uintptr_t number = 1; number <= count; ++number)
    add(table, {0x10000 + number * 64}, std::to_string(number));

  looks = 0;
  for (std::uintptr_t number = 1; number <= count; ++number)
    ASSERT_EQ(table.find({0x10000 + number * 64})->name,
              std::to_string(number));
  EXPECT_EQ(table.find({1}), nullptr);
  // A search from the front of a list would look at 10000 on average.
  EXPECT_LT(looks, long{count} * 10);
}

} // namespace
