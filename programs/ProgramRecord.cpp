// Makes and drops records of programs, and sorts kernels into groups.

#include "programs/ProgramRecord.h"

#include "agent/AgentState.h"

#include <utility>

using namespace corvane;

ProgramRecord &corvane::findOrAddProgram(AgentState &state,
                                         cl_program program) {
  if (ProgramRecord *known = state.programs.find(program)) {
    ++known->refCount;
    return *known;
  }
  auto record = std::make_unique<ProgramRecord>();
  record->program = program;
  return *state.programs.append(program, std::move(record));
}

KernelGroup &corvane::addGroup(ProgramRecord &record, llvm::StringRef name) {
  record.kernelGroups.push_back(std::make_unique<KernelGroup>());
  KernelGroup &group = *record.kernelGroups.back();
  group.program = record.program;
  group.name = name.str();
  if (record.kernelGroups.size() > 1)
    record.kernelNames += ';';
  record.kernelNames += group.name;
  record.groupsByName.try_emplace(group.name, &group);
  return group;
}

namespace {
/// Adds kernels to a program's record and, unless all were added, leaves the
/// records as they were.
class Addition {
public:
  Addition(AgentState &ofState, cl_program program)
      : state(ofState), record(findOrAddProgram(ofState, program)),
        groupsBefore(record.kernelGroups.size()),
        namesBefore(record.kernelNames.size()) {
    record.hashes.clear(); // of an older build, or of an older program
  }
  ~Addition() {
    if (complete)
      return;
    if (--record.refCount == 0)
      state.programs.remove(record.program);
    else
      takeOut();
  }
  Addition(const Addition &) = delete;
  Addition &operator=(const Addition &) = delete;

  void add(FoundKernel kernel) {
    if (!kernel.variant) {
      addGroup(record, kernel.name);
      return;
    }
    KernelGroup *group = findGroup(record, kernel.variant->baseName);
    if (!group)
      group = &addGroup(record, kernel.variant->baseName);
    grown.emplace_back(group, group->variants.size());
    group->variants.push_back(std::move(kernel.variant));
    group->prototype = nullptr;
  }
  void keep() { complete = true; }

private:
  void takeOut() {
    for (auto grew = grown.rbegin(); grew != grown.rend(); ++grew)
      grew->first->variants.resize(grew->second);
    auto &groups = record.kernelGroups;
    for (; groups.size() > groupsBefore; groups.pop_back()) {
      const auto named = record.groupsByName.find(groups.back()->name);
      if (named != record.groupsByName.end() &&
          named->second == groups.back().get())
        record.groupsByName.erase(named);
    }
    record.kernelNames.resize(namesBefore);
  }

  AgentState &state;
  ProgramRecord &record;
  const std::size_t groupsBefore;
  const std::size_t namesBefore;
  /// The groups that got a variant, with the number they had before.
  std::vector<std::pair<KernelGroup *, std::size_t>> grown;
  bool complete = false;
};
} // namespace

void corvane::addKernels(AgentState &state, cl_program program,
                         std::vector<FoundKernel> kernels) {
  std::lock_guard<std::mutex> lock(state.programsLock);
  Addition addition(state, program);
  for (FoundKernel &kernel : kernels)
    addition.add(std::move(kernel));
  addition.keep();
}

KernelGroup *corvane::findGroup(const ProgramRecord &record,
                                llvm::StringRef name) {
  const auto found = record.groupsByName.find(name);
  return found == record.groupsByName.end() ? nullptr : found->second;
}

std::shared_ptr<const KernelPrototype>
corvane::prototypeOf(KernelGroup &group) {
  if (group.prototype)
    return group.prototype;
  auto prototype = std::make_shared<KernelPrototype>();
  prototype->name = group.name;
  prototype->variants.reserve(group.variants.size());
  for (const auto &variant : group.variants)
    prototype->variants.push_back(
        std::make_unique<const VariantDescription>(*variant));
  group.prototype = std::move(prototype);
  return group.prototype;
}

void corvane::forgetProgramHash(AgentState &state, cl_program program) {
  if (ProgramRecord *record = state.programs.find(program))
    record->hashes.clear();
}

void corvane::dropProgramReference(AgentState &state, cl_program program) {
  std::unique_ptr<ProgramRecord> dropped;
  std::lock_guard<std::mutex> lock(state.programsLock);
  ProgramRecord *record = state.programs.find(program);
  if (record && --record->refCount == 0)
    dropped = state.programs.remove(program);
}
