// Contexts and command queues of the scripted runtime.

#include "tests/support/entries/Entries.h"

#include "tests/support/Words.h"
#include "tests/support/World.h"

using namespace corvane::test;

cl_int CL_API_CALL fake::clRetainContext(cl_context context) {
  return World::current("clRetainContext")
      .retain("clRetainContext", context, CL_INVALID_CONTEXT);
}

cl_int CL_API_CALL fake::clReleaseContext(cl_context context) {
  return World::current("clReleaseContext")
      .release("clReleaseContext", context, CL_INVALID_CONTEXT);
}

cl_command_queue CL_API_CALL fake::clCreateCommandQueue(
    cl_context context, cl_device_id device,
    cl_command_queue_properties properties, cl_int *status) {
  World &world = World::current("clCreateCommandQueue");
  if (const auto failure =
          world.begin("clCreateCommandQueue",
                      {world.say(context), world.say(device),
                       std::to_string(properties), place(status)})) {
    setStatus(status, *failure);
    return nullptr;
  }
  std::lock_guard<std::recursive_mutex> guard(world.lock);
  const bool valid = world.objects.find(context) && world.objects.find(device);
  setStatus(status, valid ? CL_SUCCESS : CL_INVALID_CONTEXT);
  if (!valid)
    return nullptr;
  auto queue = std::make_shared<Queue>();
  queue->properties = properties;
  queue->context = context;
  queue->device = device;
  return world.objects.add<cl_command_queue>(queue);
}

cl_int CL_API_CALL fake::clRetainCommandQueue(cl_command_queue queue) {
  return World::current("clRetainCommandQueue")
      .retain("clRetainCommandQueue", queue, CL_INVALID_COMMAND_QUEUE);
}

cl_int CL_API_CALL fake::clReleaseCommandQueue(cl_command_queue queue) {
  return World::current("clReleaseCommandQueue")
      .release("clReleaseCommandQueue", queue, CL_INVALID_COMMAND_QUEUE);
}

cl_int CL_API_CALL fake::clGetCommandQueueInfo(cl_command_queue handle,
                                               cl_command_queue_info what,
                                               size_t capacity, void *value,
                                               size_t *size) {
  World &world = World::current("clGetCommandQueueInfo");
  if (const auto failure =
          world.begin("clGetCommandQueueInfo",
                      {world.say(handle), queueInfoName(what),
                       std::to_string(capacity), place(value), place(size)}))
    return *failure;
  std::lock_guard<std::recursive_mutex> guard(world.lock);
  const auto queue = world.objects.find(handle);
  if (!queue)
    return CL_INVALID_COMMAND_QUEUE;
  switch (what) {
  case CL_QUEUE_PROPERTIES:
    return answerValue(Wanted{capacity, value, size}, queue->properties);
  case CL_QUEUE_CONTEXT:
    return answerValue(Wanted{capacity, value, size}, queue->context);
  case CL_QUEUE_DEVICE:
    return answerValue(Wanted{capacity, value, size}, queue->device);
  case CL_QUEUE_REFERENCE_COUNT:
    return answerValue(Wanted{capacity, value, size}, queue->references);
  default:
    return CL_INVALID_VALUE;
  }
}

cl_int CL_API_CALL fake::clGetDeviceInfo(cl_device_id device,
                                         cl_device_info what, size_t capacity,
                                         void *value, size_t *size) {
  World &world = World::current("clGetDeviceInfo");
  if (const auto failure =
          world.begin("clGetDeviceInfo",
                      {world.say(device), deviceInfoName(what),
                       std::to_string(capacity), place(value), place(size)}))
    return *failure;
  std::lock_guard<std::recursive_mutex> guard(world.lock);
  const unsigned number = world.numberOf(device);
  const Wanted wanted{capacity, value, size};
  if (number == 0)
    return CL_INVALID_DEVICE;
  switch (what) {
  case CL_DEVICE_NAME:
    return answer(wanted, "device " + std::to_string(number));
  case CL_DEVICE_VENDOR:
    return answer(wanted, std::string("maker"));
  case CL_DEVICE_VERSION:
    return answer(wanted, std::string("OpenCL 3.0"));
  case CL_DRIVER_VERSION:
    return answer(wanted, world.driverVersion);
  case CL_DEVICE_TYPE:
    return answerValue(wanted, cl_device_type{CL_DEVICE_TYPE_CPU});
  case CL_DEVICE_MAX_COMPUTE_UNITS:
    return answerValue(wanted, cl_uint{4});
  case CL_DEVICE_LOCAL_MEM_SIZE:
    return answerValue(wanted, cl_ulong{65536});
  default:
    return CL_INVALID_VALUE;
  }
}

static cl_int callOnQueue(const char *entry, cl_command_queue queue) {
  World &world = World::current(entry);
  if (const auto failure = world.begin(entry, {world.say(queue)}))
    return *failure;
  std::lock_guard<std::recursive_mutex> guard(world.lock);
  return world.objects.find(queue) ? CL_SUCCESS : CL_INVALID_COMMAND_QUEUE;
}

cl_int CL_API_CALL fake::clFlush(cl_command_queue queue) {
  return callOnQueue("clFlush", queue);
}

cl_int CL_API_CALL fake::clFinish(cl_command_queue queue) {
  const cl_int status = callOnQueue("clFinish", queue);
  while (status == CL_SUCCESS &&
         World::current("clFinish").commands.runFirst()) {
  }
  return status;
}
