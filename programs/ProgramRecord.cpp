// Keeps the records of programs and their kernel groups.

#include "programs/ProgramRecord.h"

#include "agent/AgentState.h"

using namespace corvane;

ProgramRecord *corvane::findOrAddProgram(AgentState &state,
                                         cl_program program) {
  if (ProgramRecord *known = state.programs.find(program)) {
    ++known->refCount;
    return known;
  }
  auto record = std::make_unique<ProgramRecord>();
  record->program = program;
  return state.programs.append(program, std::move(record));
}

KernelGroup &corvane::addGroup(ProgramRecord &record, llvm::StringRef name) {
  auto group = std::make_unique<KernelGroup>();
  group->program = record.program;
  group->name = name.str();
  if (!record.kernelGroups.empty())
    record.kernelNames += ';';
  record.kernelNames += group->name;
  record.groupsByName.try_emplace(name, group.get());
  record.kernelGroups.push_back(std::move(group));
  return *record.kernelGroups.back();
}

KernelGroup *corvane::findGroup(const ProgramRecord &record,
                                llvm::StringRef name) {
  return record.groupsByName.lookup(name);
}

void corvane::dropProgramReference(AgentState &state, cl_program program) {
  std::unique_ptr<ProgramRecord> dropped;
  std::lock_guard<std::mutex> lock(state.programsLock);
  ProgramRecord *record = state.programs.find(program);
  if (record && --record->refCount == 0)
    dropped = state.programs.remove(program);
}
