// Remembers arguments when they are set and replays them before a launch.

#include "launch/RecordedArguments.h"

#include "agent/ClError.h"
#include "agent/RuntimeTable.h"

#include <algorithm>

using namespace corvane;

RecordedArguments::RecordedArguments(std::uint64_t settingsBefore)
    : settings(settingsBefore) {
  arguments.push_back(std::make_unique<RecordedArgument>(0));
  arguments.front()->isSet = true;
}

// Keeps the present value, because the runtime may refuse the new one.
static void reserveValue(RecordedArgument &argument, std::size_t size) {
  if (argument.bytes && argument.bytes->capacity() >= size)
    return;
  auto larger = std::make_shared<std::vector<unsigned char>>();
  larger->reserve(std::max<std::size_t>(size, 1));
  if (argument.value) {
    larger->assign(argument.bytes->begin(), argument.bytes->end());
    argument.value = larger->data();
  }
  argument.bytes = std::move(larger);
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
    const auto *first = static_cast<const unsigned char *>(value);
    argument.bytes->assign(first, first + size);
    argument.value = argument.bytes->data();
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
