// Reads, writes and compares buffers in blocking transfers.

#include "tuner/BufferContents.h"

#include "agent/RuntimeTable.h"
#include "tuner/TuningThread.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

using namespace corvane;

// The most that is read at a time for a comparison; a multiple of every
// element's size.
static constexpr std::size_t pieceSize = std::size_t{8} << 20;

std::unique_ptr<BufferContents>
BufferContents::allocate(llvm::ArrayRef<TunedBuffer> of) {
  std::unique_ptr<BufferContents> contents(new BufferContents(of));
  std::size_t largest = 1;
  for (const TunedBuffer &buffer : of) {
    contents->copies.emplace_back(
        static_cast<unsigned char *>(std::malloc(buffer.size)));
    if (!contents->copies.back())
      return nullptr;
    largest = std::max(largest, buffer.size);
  }
  contents->piece.reset(
      static_cast<unsigned char *>(std::malloc(std::min(largest, pieceSize))));
  return contents->piece ? std::move(contents) : nullptr;
}

cl_int BufferContents::readFrom(cl_command_queue queue) {
  for (std::size_t i = 0; i != buffers.size(); ++i) {
    const cl_int status = runtime().clEnqueueReadBuffer(
        queue, buffers[i].memory.get(), CL_TRUE, 0, buffers[i].size,
        copies[i].get(), 0, nullptr, nullptr);
    leaveIfAbandoned();
    if (status != CL_SUCCESS)
      return status;
  }
  return CL_SUCCESS;
}

cl_int BufferContents::writeTo(cl_command_queue queue) const {
  for (std::size_t i = 0; i != buffers.size(); ++i) {
    const cl_int status = runtime().clEnqueueWriteBuffer(
        queue, buffers[i].memory.get(), CL_TRUE, 0, buffers[i].size,
        copies[i].get(), 0, nullptr, nullptr);
    leaveIfAbandoned();
    if (status != CL_SUCCESS)
      return status;
  }
  return CL_SUCCESS;
}

bool BufferContents::hasContentsOf(const BufferContents &other) const {
  for (std::size_t i = 0; i != buffers.size(); ++i)
    if (std::memcmp(copies[i].get(), other.copies[i].get(), buffers[i].size) !=
        0)
      return false;
  return true;
}

cl_int BufferContents::compareBuffer(cl_command_queue queue, std::size_t index,
                                     Tolerance tolerance, Check &check) const {
  const TunedBuffer &buffer = buffers[index];
  OutputComparison comparison(buffer.elements, tolerance);
  for (std::size_t at = 0; at < buffer.size; at += pieceSize) {
    const std::size_t length = std::min(pieceSize, buffer.size - at);
    const cl_int status =
        runtime().clEnqueueReadBuffer(queue, buffer.memory.get(), CL_TRUE, at,
                                      length, piece.get(), 0, nullptr, nullptr);
    leaveIfAbandoned();
    if (status != CL_SUCCESS)
      return status;
    comparison.addPiece(at, copies[index].get() + at, piece.get(), length);
  }

  // The magnitude is a walk over the whole reference; most outputs are equal.
  OutputComparison::Result result = comparison.result(0.0);
  if (result.equality == Equality::Different &&
      tolerance.mode == Tolerance::Mode::Bound)
    result = comparison.result(
        largestMagnitude(buffer.elements, copies[index].get(), buffer.size));
  if (result.equality > check.equality)
    check = {result.equality, buffer.argument, std::move(result.difference)};
  return CL_SUCCESS;
}

cl_int BufferContents::compare(cl_command_queue queue, Tolerance tolerance,
                               Check &check) const {
  Check found;
  for (std::size_t i = 0; i != buffers.size(); ++i) {
    const cl_int status = compareBuffer(queue, i, tolerance, found);
    if (status != CL_SUCCESS)
      return status;
    if (found.equality == Equality::Different)
      break;
  }
  check = std::move(found);
  return CL_SUCCESS;
}
