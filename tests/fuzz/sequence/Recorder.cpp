// Replaces entries by functions that make the call and keep its answer.

#include "tests/fuzz/sequence/Recorder.h"

#include <algorithm>
#include <tuple>
#include <type_traits>

using namespace corvane;
using namespace corvane::fuzz;

static Recorder *theRecorder = nullptr;

Recorder &Recorder::current() { return *theRecorder; }

// The status of an entry that returns an object, which is where its last
// argument points.
template <typename Result, typename... Arguments>
static void noteAnswer(Heard &call, Result result, Arguments... arguments) {
  if constexpr (std::is_same_v<Result, cl_int>) {
    call.status = result;
  } else {
    call.handle = result;
    const auto place =
        std::get<sizeof...(arguments) - 1>(std::tie(arguments...));
    call.status = place ? *place : CL_SUCCESS;
  }
}

static void noteLaunch(Heard &call, cl_command_queue, cl_kernel kernel, cl_uint,
                       const size_t *, const size_t *, const size_t *, cl_uint,
                       const cl_event *, cl_event *event) {
  call.handle = kernel;
  call.event = event ? *event : nullptr;
}

static void recordKernels(Heard &call, cl_program, cl_uint capacity,
                          cl_kernel *kernels, cl_uint *count) {
  // The count may be false.
  if (call.status == CL_SUCCESS && kernels && count)
    call.made.assign(kernels, kernels + std::min(capacity, *count));
}

namespace {
template <auto Entry> struct Ear;

template <typename Result, typename... Arguments,
          Result (CL_API_CALL *DispatchTable::*Entry)(Arguments...)>
struct Ear<Entry> {
  static Result CL_API_CALL call(Arguments... arguments) {
    Recorder &recorder = Recorder::current();
    const Result result = (recorder.below().*Entry)(arguments...);
    Heard heard;
    heard.entry = name;
    noteAnswer(heard, result, arguments...);
    using Type = Result(CL_API_CALL *)(Arguments...);
    if constexpr (std::is_same_v<
                      Type, decltype(DispatchTable::clEnqueueNDRangeKernel)>)
      noteLaunch(heard, arguments...);
    if constexpr (std::is_same_v<
                      Type, decltype(DispatchTable::clCreateKernelsInProgram)>)
      recordKernels(heard, arguments...);
    recorder.add(std::move(heard));
    return result;
  }
  static const char *name;
};

template <typename Result, typename... Arguments,
          Result (CL_API_CALL *DispatchTable::*Entry)(Arguments...)>
const char *Ear<Entry>::name = nullptr;
} // namespace

template <auto Entry>
static void listen(DispatchTable &table, const char *name) {
  Ear<Entry>::name = name;
  table.*Entry = Ear<Entry>::call;
}

Recorder::Recorder(DispatchTable &table) : original(table) {
  theRecorder = this;
#define LISTEN(entry) listen<&DispatchTable::entry>(table, #entry);
  LISTEN(clReleaseContext)
  LISTEN(clCreateCommandQueue)
  LISTEN(clCreateBuffer)
  LISTEN(clCreateProgramWithSource)
  LISTEN(clReleaseProgram)
  LISTEN(clBuildProgram)
  LISTEN(clGetProgramInfo)
  LISTEN(clLinkProgram)
  LISTEN(clCreateKernel)
  LISTEN(clCreateKernelsInProgram)
  LISTEN(clReleaseKernel)
  LISTEN(clSetKernelArg)
  LISTEN(clEnqueueNDRangeKernel)
  LISTEN(clSetEventCallback)
#undef LISTEN
}

Recorder::~Recorder() { theRecorder = nullptr; }

std::vector<Heard> Recorder::heard(const std::string &entry) const {
  std::vector<Heard> found;
  for (const Heard &call : calls)
    if (call.entry == entry)
      found.push_back(call);
  return found;
}
