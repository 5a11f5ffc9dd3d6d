// The hook of questions about a program: leaves the variants out of the
// answers.

#include "agent/AgentState.h"
#include "agent/RuntimeTable.h"
#include "programs/Hooks.h"
#include "programs/ProgramRecord.h"

#include <cstring>
#include <optional>

using namespace corvane;

namespace {
/// The place for an answer that the application has passed.
struct Answer {
  std::size_t capacity; ///< bytes
  void *value;          ///< null: not wanted
  std::size_t *length;  ///< null: not wanted

  cl_int give(const void *data, std::size_t size) const {
    if (value && capacity < size)
      return CL_INVALID_VALUE;
    if (value)
      std::memcpy(value, data, size);
    if (length)
      *length = size;
    return CL_SUCCESS;
  }
};
} // namespace

// Calls give(record) with the lock of the records held. No result if the agent
// has no record of the program.
template <typename Give>
static std::optional<cl_int> withRecord(cl_program program, Give give) {
  StatePin pin;
  AgentState *state = agentState();
  if (!state)
    return std::nullopt;
  std::lock_guard<std::mutex> lock(state->programsLock);
  const ProgramRecord *record = state->programs.find(program);
  if (!record)
    return std::nullopt;
  return give(*record);
}

static std::optional<cl_int> giveKernelCount(cl_program program,
                                             Answer answer) {
  return withRecord(program, [answer](const ProgramRecord &record) {
    const std::size_t count = record.kernelGroups.size();
    return answer.give(&count, sizeof count);
  });
}

static std::optional<cl_int> giveKernelNames(cl_program program,
                                             Answer answer) {
  return withRecord(program, [answer](const ProgramRecord &record) {
    return answer.give(record.kernelNames.c_str(),
                       record.kernelNames.size() + 1);
  });
}

// Unlocked: a build may take long, and the application may ask meanwhile. The
// pin keeps the state, the leaf lock the record.
cl_int CL_API_CALL hooks::clGetProgramInfo(cl_program program,
                                           cl_program_info paramName,
                                           size_t paramValueSize,
                                           void *paramValue,
                                           size_t *paramValueSizeRet) {
  const auto askRuntime = [&] {
    return runtime().clGetProgramInfo(program, paramName, paramValueSize,
                                      paramValue, paramValueSizeRet);
  };
  const Answer answer{paramValueSize, paramValue, paramValueSizeRet};

  if (paramName == CL_PROGRAM_NUM_KERNELS) {
    const cl_int status = askRuntime();
    if (status != CL_SUCCESS)
      return status;
    return giveKernelCount(program, answer).value_or(status);
  }

  if (paramName == CL_PROGRAM_KERNEL_NAMES && agentState()) {
    // Only to learn whether the runtime would answer at all.
    std::size_t length = 0;
    const cl_int status =
        runtime().clGetProgramInfo(program, paramName, 0, nullptr, &length);
    if (status != CL_SUCCESS)
      return status;
    if (const auto given = giveKernelNames(program, answer))
      return *given;
  }

  return askRuntime();
}
