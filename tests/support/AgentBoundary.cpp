// Wraps every entry of both tables, and the callbacks that go through them.

#include "tests/support/AgentBoundary.h"

#include "tests/support/FakeTable.h"
#include "tests/support/LoadedAgent.h"

#include <tuple>
#include <type_traits>
#include <utility>

using namespace corvane;
using namespace corvane::test;

namespace {
// The boundary of the plain functions that replace entries.
AgentBoundary *theBoundary = nullptr;
DispatchTable ofRuntime;
DispatchTable ofAgent;
AgentOperations operationsOfRuntime;

// The status of a call: its result, or where its last argument points.
template <typename Result, typename... Arguments>
cl_int statusOf(Result result, Arguments... arguments) {
  if constexpr (std::is_same_v<Result, cl_int>)
    return result;
  else if constexpr (sizeof...(Arguments) != 0) {
    const auto last =
        std::get<sizeof...(Arguments) - 1>(std::make_tuple(arguments...));
    if constexpr (std::is_same_v<decltype(last), cl_int *const>)
      if (last)
        return *last;
  }
  return result ? CL_SUCCESS : CL_INVALID_VALUE;
}

template <auto Entry, typename Function = std::remove_reference_t<
                          decltype(std::declval<DispatchTable>().*Entry)>>
struct Crossing {
  // For an entry whose signature the headers do not declare.
  static Function in(const char *) { return ofAgent.*Entry; }
  static Function out(const char *) { return ofRuntime.*Entry; }
};

template <auto Entry, typename Result, typename... Arguments>
struct Crossing<Entry, Result(CL_API_CALL *)(Arguments...)> {
  static const char *name;

  static Result CL_API_CALL goIn(Arguments... arguments) {
    const OnSide side(Side::Agent);
    return (ofAgent.*Entry)(arguments...);
  }
  static Result CL_API_CALL goOut(Arguments... arguments) {
    const OnSide side(Side::Outside);
    if constexpr (std::is_void_v<Result>) {
      (ofRuntime.*Entry)(arguments...);
    } else {
      const std::size_t place = theBoundary->recordCall(name);
      const Result result = (ofRuntime.*Entry)(arguments...);
      theBoundary->recordAnswer(place, statusOf<Result>(result, arguments...));
      return result;
    }
  }
  static auto in(const char *entry) {
    name = entry;
    return ofAgent.*Entry ? goIn : nullptr;
  }
  static auto out(const char *entry) {
    name = entry;
    return ofRuntime.*Entry ? goOut : nullptr;
  }
};

template <auto Entry, typename Result, typename... Arguments>
const char *Crossing<Entry, Result(CL_API_CALL *)(Arguments...)>::name = "";
} // namespace

static void CL_CALLBACK eventCalls(cl_event event, cl_int status, void *data) {
  const auto *callback = static_cast<AgentBoundary::Callback *>(data);
  const OnSide side(Side::Agent);
  callback->event(event, status, callback->userData);
}

static void CL_CALLBACK destructorCalls(cl_mem buffer, void *data) {
  const auto *callback = static_cast<AgentBoundary::Callback *>(data);
  const OnSide side(Side::Agent);
  callback->destructor(buffer, callback->userData);
}

using EventCallback = void(CL_CALLBACK *)(cl_event, cl_int, void *);
using Destructor = void(CL_CALLBACK *)(cl_mem, void *);

static cl_int CL_API_CALL watchEvent(cl_event event, cl_int type,
                                     EventCallback callback, void *data) {
  const OnSide side(Side::Outside);
  const std::size_t place = theBoundary->recordCall("clSetEventCallback");
  const cl_int status = ofRuntime.clSetEventCallback(
      event, type, callback ? eventCalls : nullptr,
      theBoundary->keep({callback, nullptr, data}));
  theBoundary->recordAnswer(place, status);
  return status;
}

static cl_int CL_API_CALL watchBuffer(cl_mem buffer, Destructor destructor,
                                      void *data) {
  const OnSide side(Side::Outside);
  const std::size_t place =
      theBoundary->recordCall("clSetMemObjectDestructorCallback");
  const cl_int status = ofRuntime.clSetMemObjectDestructorCallback(
      buffer, destructor ? destructorCalls : nullptr,
      theBoundary->keep({nullptr, destructor, data}));
  theBoundary->recordAnswer(place, status);
  return status;
}

static cl_int CL_API_CALL getTable(AgentOperations *agent, void *table,
                                   std::size_t size) {
  const OnSide side(Side::Outside);
  const std::size_t place = theBoundary->recordCall("GetICDDispatchTable");
  const cl_int status =
      operationsOfRuntime.getICDDispatchTable(agent, table, size);
  theBoundary->recordAnswer(place, status);
  return status;
}

static cl_int CL_API_CALL setTable(AgentOperations *agent, void *table,
                                   std::size_t size) {
  const OnSide side(Side::Outside);
  const std::size_t place = theBoundary->recordCall("SetICDDispatchTable");
  const cl_int status =
      operationsOfRuntime.setICDDispatchTable(agent, table, size);
  theBoundary->recordAnswer(place, status);
  return status;
}

AgentBoundary::AgentBoundary(FakeRuntime &around) : runtime(around) {
  theBoundary = this;
  DispatchTable &table = runtime.ownTable();
  ofRuntime = table;
#define ENTRY(index, name)                                                     \
  table.name = Crossing<&DispatchTable::name>::out(#name);
#include "agent/DispatchEntries.def"
  table.clSetEventCallback = watchEvent;
  table.clSetMemObjectDestructorCallback = watchBuffer;

  AgentOperations &operations = *runtime.agent().operations();
  operationsOfRuntime = operations;
  operations.getICDDispatchTable = getTable;
  operations.setICDDispatchTable = setTable;
  entrance = table;
}

AgentBoundary::~AgentBoundary() { theBoundary = nullptr; }

cl_int AgentBoundary::load() {
  cl_int status = CL_SUCCESS;
  {
    const OnSide side(Side::Agent);
    status = clAgent_OnLoad(runtime.agent().operations());
  }
  ofAgent = runtime.agent().current;
#define ENTRY(index, name)                                                     \
  entrance.name = Crossing<&DispatchTable::name>::in(#name);
#include "agent/DispatchEntries.def"
  return status;
}

void AgentBoundary::unload() {
  const OnSide side(Side::Agent);
  clAgent_OnUnload(runtime.agent().operations());
}

std::vector<Answered> AgentBoundary::answers() const {
  const std::lock_guard<std::mutex> guard(lock);
  return noted;
}

void AgentBoundary::forgetAnswers() {
  const std::lock_guard<std::mutex> guard(lock);
  noted.clear();
}

std::set<std::pair<std::string, cl_int>> AgentBoundary::failures() const {
  const std::lock_guard<std::mutex> guard(lock);
  return failed;
}

std::size_t AgentBoundary::recordCall(const char *entry) {
  const std::lock_guard<std::mutex> guard(lock);
  noted.push_back({entry, CL_SUCCESS});
  return noted.size() - 1;
}

void AgentBoundary::recordAnswer(std::size_t place, cl_int status) {
  const std::lock_guard<std::mutex> guard(lock);
  if (place >= noted.size())
    return;
  noted[place].status = status;
  if (status != CL_SUCCESS)
    failed.insert({noted[place].entry, status});
}

AgentBoundary::Callback *AgentBoundary::keep(const Callback &callback) {
  const std::lock_guard<std::mutex> guard(lock);
  return &callbacks.emplace_back(callback);
}
