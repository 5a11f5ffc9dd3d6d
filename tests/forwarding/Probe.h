// Replaces an entry of the runtime and keeps what it was called with.

#pragma once

#include "tests/support/LoadedAgent.h"

#include "gtest/gtest.h"

#include <cstdint>
#include <optional>
#include <tuple>
#include <type_traits>
#include <vector>

namespace corvane::test {

/// A status that no hook would make up.
inline constexpr cl_int unlikelyStatus = -1234;

/// A pointer that must not be followed, different for each \p number.
template <typename Pointer> Pointer nonsense(std::uintptr_t number) {
  return reinterpret_cast<Pointer>(number * 0x1010);
}

template <auto entry, typename = decltype(entry)> class Probe;

/// The entry. Returns a result, and stores unlikelyStatus if the caller wants a
/// status in its last argument.
template <auto entry, typename Result, typename... Arguments>
class Probe<entry, Result (CL_API_CALL *DispatchTable::*)(Arguments...)> {
public:
  using Call = std::tuple<Arguments...>;

  static void install(DispatchTable &table, Result answer) {
    calls.clear();
    result = answer;
    table.*entry = called;
  }

  static inline std::vector<Call> calls;

private:
  static Result CL_API_CALL called(Arguments... arguments) {
    calls.emplace_back(arguments...);
    const auto last =
        std::get<sizeof...(Arguments) - 1>(std::tie(arguments...));
    if constexpr (std::is_same_v<std::decay_t<decltype(last)>, cl_int *>)
      if (last)
        *last = unlikelyStatus;
    return result;
  }

  static inline Result result{};
};

/// What the agent knows when the call comes.
enum class Known { State, NothingAnyMore };

/// Calls a hook once while the agent has its state, and once after the unload
/// has taken it away. The objects in the calls are unknown to the agent.
class Forwarding : public testing::TestWithParam<Known> {
protected:
  bool hasState() const { return GetParam() == Known::State; }

  /// Calls the hook of \p entry and returns its result.
  template <auto entry, typename Result, typename... Arguments>
  Result call(Result answer, Arguments... arguments) {
    using Entry = Probe<entry>;
    Entry::install(runtime.ownTable(), answer);
    LoadedAgent agent(runtime);
    if (!hasState())
      agent.unload();
    return (agent.table().*entry)(arguments...);
  }

  FakeRuntime runtime;
};

inline std::string nameOfKnown(const testing::TestParamInfo<Known> &known) {
  return known.param == Known::State ? "WithState" : "AfterUnload";
}

} // namespace corvane::test
