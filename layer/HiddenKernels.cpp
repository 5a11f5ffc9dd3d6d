// Compares what runtime and agent tell of a program's kernels.

#include "layer/HiddenKernels.h"

#include "layer/Answer.h"
#include "layer/KnownBinaries.h"
#include "layer/Programs.h"
#include "layer/UpperHooks.h"

#include <algorithm>

using namespace corvane::layer;

static Names split(const std::string &joined) {
  Names names;
  size_t start = 0;
  while (start < joined.size()) {
    const size_t end = std::min(joined.find(';', start), joined.size());
    names.push_back(joined.substr(start, end - start));
    start = end + 1;
  }
  return names;
}

static std::string join(const Names &names) {
  std::string joined;
  for (const std::string &name : names)
    joined.append(joined.empty() ? "" : ";").append(name);
  return joined;
}

std::optional<Names> corvane::layer::askForNames(const cl_icd_dispatch &calls,
                                                 cl_program program) {
  const auto ask = [&](size_t capacity, char *value, size_t *length) {
    return calls.clGetProgramInfo(program, CL_PROGRAM_KERNEL_NAMES, capacity,
                                  value, length) == CL_SUCCESS;
  };
  size_t length = 0;
  if (!ask(0, nullptr, &length))
    return std::nullopt;
  std::vector<char> text(length + 1);
  if (!ask(length, text.data(), nullptr))
    return std::nullopt;
  return split(text.data());
}

static bool contains(const Names &sorted, const std::string &name) {
  return std::binary_search(sorted.begin(), sorted.end(), name);
}

Names corvane::layer::without(Names names, const Names &sorted) {
  names.erase(std::remove_if(names.begin(), names.end(),
                             [&](const std::string &name) {
                               return contains(sorted, name);
                             }),
              names.end());
  return names;
}

void corvane::layer::rememberHiddenKernels(cl_program program) {
  if (!programs().has(program))
    return;
  Names hidden;
  const std::optional<Names> all = askForNames(runtime(), program);
  std::optional<Names> told = askForNames(agent(), program);
  // An agent that could not look at the kernels tells of none.
  if (all && told && !told->empty()) {
    std::sort(told->begin(), told->end());
    hidden = without(*all, *told);
    std::sort(hidden.begin(), hidden.end());
  }
  programs().edit(program,
                  [&](ProgramInfo &info) { info.hidden.swap(hidden); });
}

Names corvane::layer::hiddenKernels(cl_program program) {
  return programs().read(program).hidden;
}

// Count and names are as the runtime has them now, less those that the agent
// hides. The agent's own answers add one build to the other.
cl_int CL_API_CALL upper::clGetProgramInfo(cl_program program,
                                           cl_program_info name,
                                           size_t capacity, void *value,
                                           size_t *length) {
  const auto askRuntime = [&] {
    return runtime().clGetProgramInfo(program, name, capacity, value, length);
  };
  if (name != CL_PROGRAM_NUM_KERNELS && name != CL_PROGRAM_KERNEL_NAMES) {
    const cl_int status = askRuntime();
    if (status == CL_SUCCESS && name == CL_PROGRAM_BINARIES)
      rememberBinaries(program, value, capacity);
    return status;
  }
  const Names hidden = hiddenKernels(program);
  const std::optional<Names> all =
      hidden.empty() ? std::nullopt : askForNames(runtime(), program);
  if (!all)
    return askRuntime();

  const Names shown = without(*all, hidden);
  const Answer answer{capacity, value, length};
  if (name == CL_PROGRAM_NUM_KERNELS) {
    const size_t count = shown.size();
    return answer.give(&count, sizeof count);
  }
  const std::string text = join(shown);
  return answer.give(text.c_str(), text.size() + 1);
}
