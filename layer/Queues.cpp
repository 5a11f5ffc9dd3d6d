// The calls that create queues and tell of them and of their events.
//
// The agent needs queues with profiling. A queue gets it whichever call makes
// it, or is made as asked if it cannot have that. All that the application is
// told of such a queue and its events is what it would be told of the queue
// that it asked for.

#include "layer/Answer.h"
#include "layer/LayerTable.h"
#include "layer/ObjectTable.h"
#include "layer/UpperHooks.h"

#include <vector>

using namespace corvane::layer;

using PropertyList = std::vector<cl_queue_properties>;

namespace {
/// A queue that has profiling without having been asked to.
struct QueueInfo {
  bool madeByList = false;
  PropertyList list; ///< as the application gave it, with its final zero
};
} // namespace

static auto &queues() {
  return neverDestroyed<ObjectTable<cl_command_queue, QueueInfo>>();
}

// A null list counts as empty; every other list ends with a zero.
template <typename Visit>
static void forEachProperty(const cl_queue_properties *list, Visit visit) {
  for (const auto *name = list; name && *name != 0; name += 2)
    visit(name[0], name[1]);
}

static bool asksForProfiling(const cl_queue_properties *list) {
  bool asks = false;
  forEachProperty(list, [&](cl_queue_properties name, auto value) {
    if (name == CL_QUEUE_PROPERTIES && (value & CL_QUEUE_PROFILING_ENABLE) != 0)
      asks = true;
  });
  return asks;
}

static PropertyList withProfiling(const cl_queue_properties *list) {
  PropertyList extended;
  bool merged = false;
  forEachProperty(list, [&](cl_queue_properties name, auto value) {
    if (name == CL_QUEUE_PROPERTIES) {
      value |= CL_QUEUE_PROFILING_ENABLE;
      merged = true;
    }
    extended.insert(extended.end(), {name, value});
  });
  if (!merged)
    extended.insert(extended.end(),
                    {CL_QUEUE_PROPERTIES, CL_QUEUE_PROFILING_ENABLE});
  extended.push_back(0);
  return extended;
}

static QueueInfo infoOf(const cl_queue_properties *list) {
  QueueInfo info;
  info.madeByList = true;
  if (!list)
    return info;
  forEachProperty(list, [&](cl_queue_properties name, auto value) {
    info.list.insert(info.list.end(), {name, value});
  });
  info.list.push_back(0);
  return info;
}

// A queue without times is better than none, and the error that the application
// gets must be about its own wishes.
template <typename CreateExtended, typename CreateAsAsked>
static cl_command_queue createProfiled(CreateExtended createExtended,
                                       CreateAsAsked createAsAsked,
                                       QueueInfo info, cl_int *errcodeRet) {
  cl_int status = CL_SUCCESS;
  cl_command_queue queue = createExtended(&status);
  if (!queue || status != CL_SUCCESS)
    return createAsAsked();
  queues().insert(queue, std::move(info));
  if (errcodeRet)
    *errcodeRet = status;
  return queue;
}

cl_command_queue CL_API_CALL upper::clCreateCommandQueue(
    cl_context context, cl_device_id device,
    cl_command_queue_properties properties, cl_int *errcodeRet) {
  const auto create = [&](const cl_icd_dispatch &calls, cl_int *status) {
    return calls.clCreateCommandQueue(context, device, properties, status);
  };
  if ((properties & CL_QUEUE_PROFILING_ENABLE) != 0)
    return create(agent(), errcodeRet);
  // It is the agent that adds profiling.
  return createProfiled([&](cl_int *status) { return create(agent(), status); },
                        [&] { return create(runtime(), errcodeRet); },
                        QueueInfo(), errcodeRet);
}

cl_command_queue CL_API_CALL upper::clCreateCommandQueueWithProperties(
    cl_context context, cl_device_id device, const cl_queue_properties *list,
    cl_int *errcodeRet) {
  const auto create = [&](const cl_queue_properties *properties,
                          cl_int *status) {
    return runtime().clCreateCommandQueueWithProperties(context, device,
                                                        properties, status);
  };
  if (asksForProfiling(list))
    return create(list, errcodeRet);
  const PropertyList extended = withProfiling(list);
  return createProfiled(
      [&](cl_int *status) { return create(extended.data(), status); },
      [&] { return create(list, errcodeRet); }, infoOf(list), errcodeRet);
}

cl_int CL_API_CALL upper::clRetainCommandQueue(cl_command_queue queue) {
  const cl_int status = runtime().clRetainCommandQueue(queue);
  if (status == CL_SUCCESS)
    queues().retain(queue);
  return status;
}

cl_int CL_API_CALL upper::clReleaseCommandQueue(cl_command_queue queue) {
  queues().release(queue);
  return runtime().clReleaseCommandQueue(queue);
}

static cl_int answerProperties(cl_command_queue queue, Answer answer) {
  const cl_int status = runtime().clGetCommandQueueInfo(
      queue, CL_QUEUE_PROPERTIES, answer.capacity, answer.value, answer.length);
  if (status == CL_SUCCESS && answer.value && queues().has(queue))
    *static_cast<cl_command_queue_properties *>(answer.value) &=
        ~cl_command_queue_properties{CL_QUEUE_PROFILING_ENABLE};
  return status;
}

static cl_int answerList(cl_command_queue queue, Answer answer) {
  const auto ask = [&](Answer wanted) {
    return runtime().clGetCommandQueueInfo(queue, CL_QUEUE_PROPERTIES_ARRAY,
                                           wanted.capacity, wanted.value,
                                           wanted.length);
  };
  const QueueInfo info = queues().read(queue);
  size_t length = 0;
  // A runtime of before OpenCL 3.0 does not answer at all.
  if (!info.madeByList || ask({0, nullptr, &length}) != CL_SUCCESS)
    return ask(answer);
  // A list that was null has no length, and so fits everywhere.
  return answer.give(info.list.data(),
                     info.list.size() * sizeof(cl_queue_properties));
}

cl_int CL_API_CALL upper::clGetCommandQueueInfo(cl_command_queue queue,
                                                cl_command_queue_info name,
                                                size_t capacity, void *value,
                                                size_t *length) {
  const Answer answer{capacity, value, length};
  if (name == CL_QUEUE_PROPERTIES)
    return answerProperties(queue, answer);
  if (name == CL_QUEUE_PROPERTIES_ARRAY)
    return answerList(queue, answer);
  return runtime().clGetCommandQueueInfo(queue, name, capacity, value, length);
}

static bool hasHiddenTimes(cl_event event) {
  cl_command_queue queue = nullptr;
  return runtime().clGetEventInfo(event, CL_EVENT_COMMAND_QUEUE, sizeof queue,
                                  &queue, nullptr) == CL_SUCCESS &&
         queues().has(queue);
}

cl_int CL_API_CALL upper::clGetEventProfilingInfo(cl_event event,
                                                  cl_profiling_info name,
                                                  size_t capacity, void *value,
                                                  size_t *length) {
  if (hasHiddenTimes(event))
    return CL_PROFILING_INFO_NOT_AVAILABLE;
  return runtime().clGetEventProfilingInfo(event, name, capacity, value,
                                           length);
}
