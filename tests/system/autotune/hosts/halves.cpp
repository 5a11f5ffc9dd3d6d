// Works on the two halves of one buffer at the same time. The argument names
// the kind of work beside the launches.

#include "tests/system/autotune/hosts/Host.h"

#include <cstdio>
#include <cstring>
#include <functional>

using namespace hosts;

static constexpr size_t half = size_t{1} << 16;
static constexpr size_t bytes = half * sizeof(cl_uint);

namespace {
/// A kernel that works on the left half; x is the other operand.
struct LeftHalf {
  Session session;
  Queue left = session.queue();
  Queue right = session.queue();
  Buffer y = session.bufferOf(someValues(2 * half, 1));
  Buffer x = session.bufferOf(someValues(2 * half, 2));
  Kernel kernel = session.kernel("accumulate");
  LeftHalf() { setAccumulate(kernel, y.get(), x.get(), 3); }
};

/// Works on the right half, in the round of that number; returns its event.
using Work = std::function<Event(LeftHalf &, cl_uint)>;
} // namespace

static Event upload(LeftHalf &host, cl_uint round, cl_bool blocking) {
  static Values fresh;
  fresh = someValues(half, 10 + round);
  cl_event event = nullptr;
  check(clEnqueueWriteBuffer(host.right.get(), host.y.get(), blocking, bytes,
                             bytes, fresh.data(), 0, nullptr, &event),
        "clEnqueueWriteBuffer");
  return Event(event);
}

static Event fill(LeftHalf &host, cl_uint round) {
  cl_event event = nullptr;
  check(clEnqueueFillBuffer(host.right.get(), host.y.get(), &round,
                            sizeof round, bytes, bytes, 0, nullptr, &event),
        "clEnqueueFillBuffer");
  return Event(event);
}

static Event copy(LeftHalf &host, cl_uint) {
  cl_event event = nullptr;
  check(clEnqueueCopyBuffer(host.right.get(), host.x.get(), host.y.get(), 0,
                            bytes, bytes, 0, nullptr, &event),
        "clEnqueueCopyBuffer");
  return Event(event);
}

// Writes through the pointer while the launch may still run.
static Event map(LeftHalf &host, cl_uint round) {
  cl_int status = CL_SUCCESS;
  void *region =
      clEnqueueMapBuffer(host.right.get(), host.y.get(), CL_TRUE, CL_MAP_WRITE,
                         bytes, bytes, 0, nullptr, nullptr, &status);
  check(status, "clEnqueueMapBuffer");
  launch(host.left.get(), host.kernel, half, 64);
  check(clFlush(host.left.get()), "clFlush");
  const Values fresh = someValues(half, 20 + round);
  std::memcpy(region, fresh.data(), bytes);
  cl_event event = nullptr;
  check(clEnqueueUnmapMemObject(host.right.get(), host.y.get(), region, 0,
                                nullptr, &event),
        "clEnqueueUnmapMemObject");
  return Event(event);
}

static Buffer rightHalfOf(cl_mem buffer) {
  const cl_buffer_region region = {bytes, bytes};
  cl_int status = CL_SUCCESS;
  Buffer part(clCreateSubBuffer(buffer, 0, CL_BUFFER_CREATE_TYPE_REGION,
                                &region, &status));
  check(status, "clCreateSubBuffer");
  return part;
}

static Event uploadToPart(LeftHalf &host, cl_uint round) {
  static Values fresh;
  fresh = someValues(half, 30 + round);
  const Buffer part = rightHalfOf(host.y.get());
  cl_event event = nullptr;
  check(clEnqueueWriteBuffer(host.right.get(), part.get(), CL_FALSE, 0, bytes,
                             fresh.data(), 0, nullptr, &event),
        "clEnqueueWriteBuffer");
  return Event(event);
}

// Launches a kernel on the right half; its versions are run, too.
static Event launchOnRight(LeftHalf &host, cl_uint) {
  const Kernel kernel = host.session.kernel("accumulatePart");
  setAccumulate(kernel, host.y.get(), host.x.get(), 5);
  setArgument(kernel.get(), 3, static_cast<cl_uint>(half));
  return launch(host.right.get(), kernel, half, 32);
}

static Work workNamed(const std::string &name) {
  if (name == "fill")
    return fill;
  if (name == "copy")
    return copy;
  if (name == "map")
    return map;
  if (name == "part")
    return uploadToPart;
  if (name == "launch")
    return launchOnRight;
  const cl_bool blocking = name == "blocking" ? CL_TRUE : CL_FALSE;
  return [blocking](LeftHalf &host, cl_uint round) {
    return upload(host, round, blocking);
  };
}

// In turns, the launch comes before or after the work beside it.
int main(int argumentCount, char **arguments) {
  examples::setProgramName("halves");
  const Work work = workNamed(argumentCount > 1 ? arguments[1] : "upload");
  LeftHalf host;
  const auto launchOnLeft = [&host] {
    Event run = launch(host.left.get(), host.kernel, half, 64);
    check(clFlush(host.left.get()), "clFlush");
    return run;
  };
  for (cl_uint round = 0; round != 40; ++round) {
    Event first = round % 2 == 0 ? launchOnLeft() : work(host, round);
    check(clFlush(host.right.get()), "clFlush");
    Event second = round % 2 == 0 ? work(host, round) : launchOnLeft();
    check(clFlush(host.right.get()), "clFlush");
    const cl_event both[] = {first.get(), second.get()};
    check(clWaitForEvents(2, both), "clWaitForEvents");
    print("y", read(host.left.get(), host.y.get(), 2 * half));
  }
  finish(host.left.get());
  finish(host.right.get());
  return 0;
}
