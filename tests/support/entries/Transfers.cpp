// Reads and writes of the scripted runtime: memory is touched when they run.

#include "tests/support/entries/Enqueue.h"
#include "tests/support/entries/Entries.h"

#include "tests/support/Words.h"

using namespace corvane::test;
using fake::Enqueued;

namespace {
struct Transfer {
  const char *entry;
  bool toHost;
  cl_mem buffer;
  cl_bool blocking;
  std::size_t offset;
  std::size_t size;
  void *host; ///< only read from, unless toHost
};
} // namespace

static cl_int check(const Buffer *buffer, const Transfer &transfer) {
  const cl_mem_flags forbidden =
      CL_MEM_HOST_NO_ACCESS |
      (transfer.toHost ? CL_MEM_HOST_WRITE_ONLY : CL_MEM_HOST_READ_ONLY);
  if (!buffer)
    return CL_INVALID_MEM_OBJECT;
  if ((buffer->flags & forbidden) != 0)
    return CL_INVALID_OPERATION;
  const std::size_t size = buffer->bytes.size();
  if (!transfer.host || transfer.size == 0 || transfer.offset > size ||
      transfer.size > size - transfer.offset)
    return CL_INVALID_VALUE;
  return CL_SUCCESS;
}

static void copyBytes(Buffer &buffer, const Transfer &transfer) {
  unsigned char *inside = buffer.bytes.data() + transfer.offset;
  if (transfer.toHost)
    std::memcpy(transfer.host, inside, transfer.size);
  else
    std::memcpy(inside, transfer.host, transfer.size);
}

static std::vector<std::string> inWords(World &world, const Transfer &transfer,
                                        const Enqueued &enqueued) {
  return {world.say(enqueued.queue),
          world.say(transfer.buffer),
          transfer.blocking ? "blocking" : "non-blocking",
          std::to_string(transfer.offset),
          std::to_string(transfer.size),
          place(transfer.host)};
}

static cl_int plan(World &world, const Transfer &transfer, Command &command) {
  const auto buffer = world.objects.find(transfer.buffer);
  if (const cl_int status = check(buffer.get(), transfer))
    return status;
  command.in = {buffer};
  command.work = [buffer, transfer] { copyBytes(*buffer, transfer); };
  return CL_SUCCESS;
}

static cl_int enqueueTransfer(World &world, const Transfer &transfer,
                              const Enqueued &enqueued) {
  std::shared_ptr<Event> event;
  const cl_int status =
      fake::enqueue(world, transfer.entry, inWords(world, transfer, enqueued),
                    enqueued, [&](Command &command) {
                      event = command.event;
                      return plan(world, transfer, command);
                    });
  if (status == CL_SUCCESS && transfer.blocking)
    world.commands.runUntilOver(*event);
  return status;
}

cl_int CL_API_CALL fake::clEnqueueReadBuffer(cl_command_queue queue,
                                             cl_mem buffer, cl_bool blocking,
                                             size_t offset, size_t size,
                                             void *host, cl_uint waitCount,
                                             const cl_event *waitList,
                                             cl_event *event) {
  return enqueueTransfer(
      World::current("clEnqueueReadBuffer"),
      {"clEnqueueReadBuffer", true, buffer, blocking, offset, size, host},
      {queue, waitCount, waitList, event});
}

cl_int CL_API_CALL fake::clEnqueueWriteBuffer(
    cl_command_queue queue, cl_mem buffer, cl_bool blocking, size_t offset,
    size_t size, const void *host, cl_uint waitCount, const cl_event *waitList,
    cl_event *event) {
  return enqueueTransfer(World::current("clEnqueueWriteBuffer"),
                         {"clEnqueueWriteBuffer", false, buffer, blocking,
                          offset, size, const_cast<void *>(host)},
                         {queue, waitCount, waitList, event});
}
