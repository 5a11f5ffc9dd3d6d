// Puts the questions into the table that the agent calls through.

#include "InventedRuntime.h"

#include "agent/RuntimeTable.h"

#include <algorithm>
#include <cstring>

using namespace corvane;
using namespace corvane::test;

static InventedRuntime *theRuntime = nullptr;

template <typename Answers, typename Key>
static cl_int answer(const Answers &answers, const Key &key, std::size_t room,
                     void *place, std::size_t *size) {
  ++theRuntime->questions;
  const auto found = answers.find(key);
  return found == answers.end() ? CL_INVALID_VALUE
                                : found->second(room, place, size);
}

static cl_int CL_API_CALL deviceInfo(cl_device_id, cl_device_info what,
                                     std::size_t room, void *place,
                                     std::size_t *size) {
  return answer(theRuntime->device, what, room, place, size);
}

static cl_int CL_API_CALL programInfo(cl_program, cl_program_info what,
                                      std::size_t room, void *place,
                                      std::size_t *size) {
  return answer(theRuntime->program, what, room, place, size);
}

static cl_int CL_API_CALL buildInfo(cl_program, cl_device_id device,
                                    cl_program_build_info what,
                                    std::size_t room, void *place,
                                    std::size_t *size) {
  return answer(theRuntime->build, std::pair(device, what), room, place, size);
}

static cl_int CL_API_CALL queueInfo(cl_command_queue,
                                    cl_command_queue_info what,
                                    std::size_t room, void *place,
                                    std::size_t *size) {
  return answer(theRuntime->queue, what, room, place, size);
}

InventedRuntime::InventedRuntime() {
  theRuntime = this;
  DispatchTable table{};
  table.clGetDeviceInfo = deviceInfo;
  table.clGetProgramInfo = programInfo;
  table.clGetProgramBuildInfo = buildInfo;
  table.clGetCommandQueueInfo = queueInfo;
  saveRuntimeTable(table);
}

InventedRuntime::~InventedRuntime() {
  saveRuntimeTable(DispatchTable{});
  theRuntime = nullptr;
}

Answer corvane::test::bytes(std::string text) {
  return [text](std::size_t room, void *place, std::size_t *size) {
    if (place && room < text.size())
      return CL_INVALID_VALUE;
    if (place && !text.empty())
      std::memcpy(place, text.data(), text.size());
    if (size)
      *size = text.size();
    return CL_SUCCESS;
  };
}

Answer corvane::test::text(const std::string &words) {
  return bytes(words + '\0');
}
