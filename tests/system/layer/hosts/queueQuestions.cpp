// Makes queues in every way and asks them, and the events of their launches,
// what an application can ask.

#include "tests/system/layer/hosts/Program.h"

#include <cstdio>

using namespace hosts;

static void tellProperties(cl_command_queue queue) {
  cl_command_queue_properties properties[2] = {77, 77};
  size_t length = 77;
  const auto ask = [&](size_t capacity, void *value) {
    return clGetCommandQueueInfo(queue, CL_QUEUE_PROPERTIES, capacity, value,
                                 &length);
  };
  std::printf("  properties: small %d", ask(4, properties));
  std::printf(" %llu", static_cast<unsigned long long>(properties[0]));
  std::printf(" full %d", ask(sizeof properties, properties));
  std::printf(" %llu %llu length %zu\n",
              static_cast<unsigned long long>(properties[0]),
              static_cast<unsigned long long>(properties[1]), length);
}

static void tellList(cl_command_queue queue) {
  cl_queue_properties list[8] = {77, 77, 77, 77, 77, 77, 77, 77};
  size_t length = 77;
  const auto ask = [&](size_t capacity, void *value) {
    return clGetCommandQueueInfo(queue, CL_QUEUE_PROPERTIES_ARRAY, capacity,
                                 value, &length);
  };
  std::printf("  list: alone %d", ask(0, nullptr));
  std::printf(" length %zu", length);
  std::printf(" small %d", ask(4, list));
  std::printf(" full %d:", ask(sizeof list, list));
  for (const cl_queue_properties value : list)
    std::printf(" %llx", static_cast<unsigned long long>(value));
  std::printf(" length %zu\n", length);
}

static void tellTimes(cl_event event) {
  cl_ulong time = 77;
  const auto ask = [&](cl_profiling_info name, size_t capacity, void *value) {
    return clGetEventProfilingInfo(event, name, capacity, value, nullptr);
  };
  std::printf("  times: %d", ask(CL_PROFILING_COMMAND_END, sizeof time, &time));
  std::printf(" some %d", time != 77);
  std::printf(" small %d", ask(CL_PROFILING_COMMAND_START, 4, &time));
  std::printf(" unknown %d\n", ask(0x7777, sizeof time, &time));
}

static void tell(const char *what, const Session &session, cl_int status,
                 Queue queue) {
  std::printf("%s: %d\n", what, status);
  if (!queue)
    return;
  tellProperties(queue.get());
  tellList(queue.get());

  // A retained queue answers as before.
  check(clRetainCommandQueue(queue.get()), "clRetainCommandQueue");
  check(clReleaseCommandQueue(queue.get()), "clReleaseCommandQueue");
  tellProperties(queue.get());

  const Buffer y = session.bufferOf(someValues(1024, 1));
  const Kernel kernel = session.kernel("negate");
  setArgument(kernel.get(), 0, y.get());
  const Event event = launch(queue.get(), kernel, 1024, 64);
  check(clFinish(queue.get()), "clFinish");
  tellTimes(event.get());
}

static void tellOld(const char *what, const Session &session,
                    cl_command_queue_properties properties) {
  cl_int status = 77;
  Queue queue(clCreateCommandQueue(session.context(), session.device(),
                                   properties, &status));
  tell(what, session, status, std::move(queue));
}

static void tellNew(const char *what, const Session &session,
                    const cl_queue_properties *list) {
  cl_int status = 77;
  Queue queue(clCreateCommandQueueWithProperties(
      session.context(), session.device(), list, &status));
  tell(what, session, status, std::move(queue));
}

int main(int argumentCount, char **arguments) {
  examples::setProgramName("queueQuestions");
  readOptions(argumentCount, arguments);
  const Session session(commonOptions.c_str());
  constexpr cl_queue_properties unordered =
      CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE;
  constexpr cl_queue_properties timed = CL_QUEUE_PROFILING_ENABLE;
  tellOld("old", session, 0);
  tellOld("old out of order", session, unordered);
  tellOld("old with times", session, timed);
  tellOld("old unknown", session, cl_queue_properties{1} << 40);

  const cl_queue_properties empty[] = {0};
  const cl_queue_properties plain[] = {CL_QUEUE_PROPERTIES, 0, 0};
  const cl_queue_properties outOfOrder[] = {CL_QUEUE_PROPERTIES, unordered, 0};
  const cl_queue_properties withTimes[] = {CL_QUEUE_PROPERTIES,
                                           unordered | timed, 0};
  const cl_queue_properties unknown[] = {0x7777, 1, 0};
  tellNew("new without list", session, nullptr);
  tellNew("new with empty list", session, empty);
  tellNew("new", session, plain);
  tellNew("new out of order", session, outOfOrder);
  tellNew("new with times", session, withTimes);
  tellNew("new unknown", session, unknown);

  // New queues may get the handles of old ones, with other properties.
  for (int round = 0; round < 4; ++round)
    tellOld("again", session, round % 2 == 0 ? timed : 0);
  std::printf(
      "none: %d %d %d %d\n",
      clGetCommandQueueInfo(nullptr, CL_QUEUE_PROPERTIES, 0, nullptr, nullptr),
      clGetEventProfilingInfo(nullptr, CL_PROFILING_COMMAND_END, 0, nullptr,
                              nullptr),
      clRetainCommandQueue(nullptr), clReleaseCommandQueue(nullptr));
  return 0;
}
