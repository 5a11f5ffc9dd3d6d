// Makes a table whose entries stop the process unless they are scripted.

#include "tests/support/FakeTable.h"

#include "tests/support/entries/Entries.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace corvane;
using namespace corvane::test;

const std::array<const char *, entryCount> corvane::test::entryNames = {
#define ENTRY(index, name) #name,
#include "agent/DispatchEntries.def"
};

[[noreturn]] static void stopAt(int index) {
  std::fprintf(stderr, "%s was called, but no answer was scripted.\n",
               entryNames[static_cast<std::size_t>(index)]);
  std::abort();
}

namespace {
template <int index, typename Entry> struct Unscripted;

// For an entry whose signature the headers do not declare.
template <int index> struct Unscripted<index, void *> {
  static void *entry() {
    static char place;
    return &place;
  }
};

template <int index, typename Result, typename... Arguments>
struct Unscripted<index, Result(CL_API_CALL *)(Arguments...)> {
  static Result CL_API_CALL call(Arguments...) { stopAt(index); }
  static auto entry() { return &call; }
};
} // namespace

DispatchTable corvane::test::makeFakeTable() {
  DispatchTable table{};
#define ENTRY(index, name)                                                     \
  table.name = Unscripted<index, decltype(DispatchTable::name)>::entry();
#include "agent/DispatchEntries.def"
#define SCRIPTED(name) table.name = fake::name;
#include "tests/support/entries/Scripted.def"
  return table;
}

std::array<const void *, entryCount>
corvane::test::entriesOf(const DispatchTable &table) {
  std::array<const void *, entryCount> entries{};
  static_assert(sizeof entries == sizeof table);
  std::memcpy(entries.data(), &table, sizeof table);
  return entries;
}

DispatchTable
corvane::test::tableOf(const std::array<const void *, entryCount> &entries) {
  DispatchTable table{};
  std::memcpy(&table, entries.data(), sizeof table);
  return table;
}
