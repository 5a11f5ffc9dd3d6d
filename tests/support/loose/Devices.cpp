// What the loose runtime tells of its device and of queues.

#include "tests/support/loose/Answer.h"
#include "tests/support/loose/Entries.h"
#include "tests/support/loose/Objects.h"

using namespace corvane;
using namespace corvane::test::loose;

cl_device_id corvane::test::loose::theDevice() {
  static int place;
  return reinterpret_cast<cl_device_id>(&place);
}

static cl_int CL_API_CALL tellOfDevice(cl_device_id, cl_device_info what,
                                       size_t capacity, void *value,
                                       size_t *size) {
  const Wanted wanted{capacity, value, size};
  switch (what) {
  case CL_DEVICE_NAME:
    return wanted.giveText("loose device");
  case CL_DEVICE_VENDOR:
    return wanted.giveText("maker");
  case CL_DRIVER_VERSION:
    return wanted.giveText("1.0");
  default:
    return CL_INVALID_VALUE;
  }
}

static cl_int CL_API_CALL tellOfQueue(cl_command_queue handle,
                                      cl_command_queue_info what,
                                      size_t capacity, void *value,
                                      size_t *size) {
  const Queue &queue = *objectOf(handle);
  const Wanted wanted{capacity, value, size};
  switch (what) {
  case CL_QUEUE_CONTEXT:
    return wanted.give(
        handleOf<cl_context>(const_cast<Context *>(&*queue.context)));
  case CL_QUEUE_DEVICE:
    return wanted.give(theDevice());
  case CL_QUEUE_PROPERTIES:
    return wanted.give(queue.properties);
  default:
    return CL_INVALID_VALUE;
  }
}

void corvane::test::loose::addDevices(DispatchTable &table) {
  table.clGetDeviceInfo = tellOfDevice;
  table.clGetCommandQueueInfo = tellOfQueue;
}
