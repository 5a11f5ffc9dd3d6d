// What the application launches, on which buffers, and what it expects of it.

#include "tests/faults/Story.h"

#include "gtest/gtest.h"

#include <array>

using namespace corvane;
using namespace corvane::test;

static constexpr std::array<unsigned char, 12> structure{7, 1, 2, 3};

cl_mem Story::createBuffer(std::size_t size, unsigned char first) {
  std::vector<unsigned char> bytes(size);
  for (std::size_t i = 0; i != size; ++i)
    bytes[i] = static_cast<unsigned char>(first + i);
  cl_mem buffer = nullptr;
  caller.tryTwice("clCreateBuffer", [&] {
    cl_int status = CL_SUCCESS;
    buffer = caller.cl().clCreateBuffer(
        runtime.context(), CL_MEM_READ_WRITE | CL_MEM_COPY_HOST_PTR, size,
        bytes.data(), &status);
    return status;
  });
  if (buffer)
    contents[buffer] = {runtime.look(buffer), bytes};
  return buffer;
}

// The new buffer gets the handle of the old one, and is larger.
void Story::replaceThirdBuffer() {
  cl_mem old = buffers.back();
  buffers.pop_back();
  if (old) {
    contentsOfTheGone.push_back(contents[old]);
    contents.erase(old);
  }
  releaseBuffer(old);
  buffers.push_back(createBuffer(12, 200));
}

bool Story::setSum(cl_kernel kernel, std::size_t out, std::size_t in,
                   cl_int number) {
  const auto set = [&](cl_uint index, std::size_t size, const void *value) {
    return caller.tryTwice("clSetKernelArg", [&] {
      return caller.cl().clSetKernelArg(kernel, index, size, value);
    });
  };
  return set(0, sizeof(cl_mem), &buffers[out]) &&
         set(1, sizeof(cl_mem), &buffers[in]) &&
         set(2, sizeof number, &number) &&
         set(3, structure.size(), structure.data()) && set(4, 64, nullptr);
}

// Each launch waits for the latest one that had an event. Launches without a
// local size have no event.
Story::Launched Story::launch(cl_kernel kernel, std::size_t local) {
  const bool wantsEvent = local != 0;
  const std::size_t global = 64;
  cl_event event = nullptr;
  Launched launched{};
  launched.worked = caller.tryOnce("clEnqueueNDRangeKernel", [&] {
    return caller.cl().clEnqueueNDRangeKernel(
        queue, kernel, 1, nullptr, &global, local == 0 ? nullptr : &local,
        latest ? 1 : 0, latest ? &latest : nullptr,
        wantsEvent ? &event : nullptr);
  });
  launched.ran = caller.kernelRan();
  if (!tunes && caller.wasRefused("clSetKernelArg"))
    variantsWhole = false;
  if (caller.timesRefused("clEnqueueWriteBuffer") > 2)
    unrestored = true;
  if (event && latest)
    caller.tryTwice("clReleaseEvent",
                    [this] { return caller.cl().clReleaseEvent(latest); });
  if (event)
    latest = event;
  return launched;
}

// After a failure the application sets all arguments again and launches once
// more.
void Story::launchSum(cl_kernel kernel, std::size_t out, std::size_t in,
                      cl_int number, std::size_t local) {
  if (!kernel || !buffers[out] || !buffers[in])
    return;
  for (int attempt = 0; attempt != 2; ++attempt) {
    if (!setSum(kernel, out, in, number))
      continue;
    const Launched launched = launch(kernel, local);
    if (launched.ran) {
      auto &bytes = contents[buffers[out]].shouldBe;
      const auto &other = contents[buffers[in]].shouldBe;
      for (std::size_t i = 0; i != bytes.size(); ++i)
        bytes[i] = static_cast<unsigned char>(
            bytes[i] + other[i % other.size()] + number + structure[0]);
    }
    if (launched.worked)
      return;
  }
}

void Story::launchPlain(cl_kernel kernel, std::size_t index) {
  if (!kernel || !buffers[index])
    return;
  for (int attempt = 0; attempt != 2; ++attempt) {
    const bool set = caller.tryTwice("clSetKernelArg", [&] {
      return caller.cl().clSetKernelArg(kernel, 0, sizeof(cl_mem),
                                        &buffers[index]);
    });
    const Launched launched = set ? launch(kernel, 0) : Launched{};
    if (launched.ran)
      ++contents[buffers[index]].shouldBe[0];
    if (launched.worked)
      return;
  }
}

void Story::launchAll(cl_kernel sum, cl_kernel plain) {
  launchSum(sum, 0, 1, 3, 4);
  launchSum(sum, 1, 0, 4, 4);
  launchPlain(plain, 2);
  replaceThirdBuffer();
  launchSum(sum, 2, 0, 6, 2);
  launchSum(sum, 0, 2, 5, 8);
}
