// The moves with buffers, queues and contexts.

#include "tests/fuzz/sequence/Play.h"

#include <algorithm>
#include <cstdint>

using namespace corvane;
using namespace corvane::fuzz;

static constexpr std::size_t bufferSizes[] = {8, 1, 16, 4, 100, 0};
static constexpr cl_mem_flags flags[] = {
    CL_MEM_READ_WRITE,
    CL_MEM_READ_WRITE,
    CL_MEM_READ_ONLY,
    CL_MEM_READ_WRITE | CL_MEM_HOST_NO_ACCESS,
    CL_MEM_READ_WRITE | CL_MEM_HOST_READ_ONLY,
    CL_MEM_READ_WRITE | CL_MEM_HOST_WRITE_ONLY};

// Makes memory that the agent has not seen: an image, or a buffer that another
// library made. Its address is not the start of a page, as that of no object of
// a real runtime is.
static cl_mem makeUnseen(Play &play, std::size_t size) {
  std::vector<cl_mem> made;
  do
    made.push_back(play.runtime.addBuffer(std::max<std::size_t>(size, 1)));
  while (reinterpret_cast<std::uintptr_t>(made.back()) % 4096 == 0);
  const cl_mem buffer = made.back();
  made.pop_back();
  for (const cl_mem unfit : made)
    play.recorder.below().clReleaseMemObject(unfit);
  return buffer;
}

static cl_mem makeSeen(Play &play, std::size_t size) {
  cl_int status = 1;
  cl_int *wanted = play.input.flag() ? &status : nullptr;
  const cl_mem_flags chosen = flags[play.input.below(std::size(flags))];
  const cl_mem buffer = play.cl().clCreateBuffer(play.runtime.context(), chosen,
                                                 size, nullptr, wanted);
  const Heard heard = play.onlyCall("clCreateBuffer");
  check(heard.handle == buffer, "the runtime's buffer is handed out");
  check(!wanted || status == heard.status, "its status is handed out");
  return buffer;
}

void corvane::fuzz::createBuffer(Play &play) {
  const std::size_t size =
      bufferSizes[play.input.below(std::size(bufferSizes))];
  const cl_mem buffer =
      play.input.below(8) == 1 ? makeUnseen(play, size) : makeSeen(play, size);
  if (buffer)
    play.buffers.push_back({buffer});
}

void corvane::fuzz::retainBuffer(Play &play) {
  HeldBuffer *buffer = play.pick(play.buffers);
  if (buffer && play.cl().clRetainMemObject(buffer->handle) == CL_SUCCESS)
    ++buffer->references;
}

// Marks the kernels that have the buffer as an argument.
static void forget(Play &play, cl_mem gone) {
  for (HeldKernel &kernel : play.kernels)
    for (auto &[index, buffer] : kernel.buffers)
      if (buffer == gone)
        kernel.pointsNowhere = true;
}

void corvane::fuzz::releaseBuffer(Play &play) {
  HeldBuffer *buffer = play.pick(play.buffers);
  if (!buffer || play.cl().clReleaseMemObject(buffer->handle) != CL_SUCCESS ||
      --buffer->references != 0)
    return;
  const cl_mem gone = buffer->handle;
  Play::drop(play.buffers, buffer);
  forget(play, gone);
}

void corvane::fuzz::createQueue(Play &play) {
  const cl_command_queue_properties properties = play.input.below(4);
  cl_int status = 1;
  const cl_command_queue queue = play.cl().clCreateCommandQueue(
      play.runtime.context(), play.runtime.device(), properties, &status);
  const Heard heard = play.onlyCall("clCreateCommandQueue");
  check(heard.handle == queue && heard.status == status,
        "the runtime's queue and status are handed out");
  if (queue)
    play.queues.push_back(queue);
}

void corvane::fuzz::releaseQueue(Play &play) {
  const cl_command_queue *queue = play.pick(play.queues);
  if (queue && play.cl().clReleaseCommandQueue(*queue) == CL_SUCCESS)
    Play::drop(play.queues, queue);
}

// Releases a reference that was made first, so the context itself stays.
void corvane::fuzz::releaseContext(Play &play) {
  const cl_context context = play.runtime.context();
  if (play.cl().clRetainContext(context) != CL_SUCCESS)
    return;
  const char *flush = std::getenv("CORV_FLUSH_AUTOTUNE_ON_RELEASE_CONTEXT");
  if (flush && *flush != '\0' && play.hasState)
    play.flushed();
  const cl_int status = play.cl().clReleaseContext(context);
  check(status == play.onlyCall("clReleaseContext").status,
        "the runtime's status is returned");
}
