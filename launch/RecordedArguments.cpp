// Remembers arguments when they are set and replays them before a launch.

#include "launch/RecordedArguments.h"

#include "agent/ClError.h"
#include "agent/RuntimeTable.h"

#include <algorithm>
#include <cstring>

using namespace corvane;

RecordedArguments::RecordedArguments(std::uint64_t settingsBefore)
    : settings(settingsBefore) {
  arguments.push_back(std::make_unique<RecordedArgument>(0));
  arguments.front()->isSet = true;
}

// Keeps the present value, because the runtime may refuse the new one.
static void reserveValue(RecordedArgument &argument, std::size_t size) {
  if (argument.bytes && argument.capacity >= size)
    return;
  const std::size_t capacity = std::max<std::size_t>(size, 1);
  std::shared_ptr<unsigned char[]> larger(new unsigned char[capacity]);
  if (argument.value) {
    std::memcpy(larger.get(), argument.value, argument.size);
    argument.value = larger.get();
  }
  argument.bytes = std::move(larger);
  argument.capacity = capacity;
}

void RecordedArguments::reserve(std::uint32_t index, std::size_t size,
                                const void *value) {
  if (index >= mostArguments)
    return;
  if (index >= arguments.size())
    arguments.resize(index + std::size_t{1});
  if (!arguments[index])
    arguments[index] = std::make_unique<RecordedArgument>(index);
  if (value && canBeKept(size, value))
    reserveValue(*arguments[index], size);
}

void RecordedArguments::record(std::uint32_t index, std::size_t size,
                               const void *value) {
  ++settings;
  if (index >= mostArguments) {
    ++lostCount; // for good: no variant can ever get it
    return;
  }
  RecordedArgument &argument = *arguments[index];
  lostCount -= argument.isLost;
  argument.isLost = !canBeKept(size, value);
  lostCount += argument.isLost;

  argument.size = size;
  argument.value = nullptr;
  if (value && !argument.isLost) {
    std::memmove(argument.bytes.get(), value, size);
    argument.value = argument.bytes.get();
  }
  if (!argument.isSet) {
    argument.isSet = true;
    countRecorded();
  }
}

void RecordedArguments::countRecorded() {
  while (recordedCount < arguments.size() && arguments[recordedCount] &&
         arguments[recordedCount]->isSet)
    ++recordedCount;
}

bool RecordedArguments::replay(cl_kernel target, std::uint64_t &seen) const {
  if (seen >= settings)
    return true;
  const std::uint64_t replayed = settings;
  bool complete = true;
  // By position: the runtime may call the application back, which may add
  // arguments.
  for (std::size_t i = 0, count = recordedCount; i != count; ++i) {
    const RecordedArgument &argument = *arguments[i];
    if (argument.isLost)
      continue;
    const auto bytesInUse = argument.bytes;
    const cl_int status = runtime().clSetKernelArg(
        target, argument.index, argument.size, argument.value);
    if (status == CL_SUCCESS)
      continue;
    reportClError(CallSite::ReplayArgument, status);
    complete = false;
  }
  seen = replayed;
  return complete;
}
