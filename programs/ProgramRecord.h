// The record of a program: its kernels, each with its variants.

#pragma once

#include "programs/KernelPrototype.h"
#include "variants/TransformedKernel.h"

#include "llvm/ADT/StringRef.h"

#include <CL/cl.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

struct AgentState;

/// One kernel of the application's and the variants that can replace it.
struct KernelGroup {
  cl_program program = nullptr; ///< borrowed
  std::string name;             ///< of the kernel; a variant's base name
  /// In the runtime's order of kernels.
  std::vector<std::unique_ptr<llvm::TransformedKernelAgent>> variants;
  /// Null until it is asked for, and again after a change of the variants. Only
  /// under the agent lock.
  std::shared_ptr<const KernelPrototype> prototype;
};

/// A program that was built or linked while the agent watched.
///
/// Owned by the state; found by handle. Changed under the agent lock and the
/// state's programsLock, so either is enough for reading.
struct ProgramRecord {
  cl_program program = nullptr; ///< borrowed
  /// In the order of the builds, and within one build of the runtime.
  std::vector<std::unique_ptr<KernelGroup>> kernelGroups;
  /// Builds and links, not the runtime's references.
  std::uint32_t refCount = 1;

  std::string kernelNames; ///< the groups' names, joined with ';'

  /// The oldest group of each name; names and groups are in kernelGroups.
  std::map<std::string_view, KernelGroup *> groupsByName;

  /// What programHash has found, for each device; only under the agent lock.
  std::map<cl_device_id, std::optional<std::string>> hashes;
};

/// The record of \p program with one reference more, or a new one. Hold the
/// state's programsLock as well as the agent lock.
ProgramRecord &findOrAddProgram(AgentState &state, cl_program program);

/// Appends a group, also if there is one of that name already.
KernelGroup &addGroup(ProgramRecord &record, llvm::StringRef name);

/// A kernel that a build has made.
struct FoundKernel {
  std::string name;
  std::unique_ptr<llvm::TransformedKernelAgent> variant; ///< null: ordinary
};

/// Sorts kernels into groups of \p program's record, found or added. An
/// exception leaves all records as they were. Hold the agent lock.
void addKernels(AgentState &state, cl_program program,
                std::vector<FoundKernel> kernels);

/// The oldest group called \p name; null when there is none.
KernelGroup *findGroup(const ProgramRecord &record, llvm::StringRef name);

/// What the group's kernels have in common, with copies of its variants. An
/// exception leaves the group as it was. Hold the agent lock.
std::shared_ptr<const KernelPrototype> prototypeOf(KernelGroup &group);

/// Forgets the hashes of \p program, which was built again. Hold the agent
/// lock.
void forgetProgramHash(AgentState &state, cl_program program);

/// Takes one reference from the record of \p program, if there is one, and
/// forgets it with the last. Hold the agent lock.
void dropProgramReference(AgentState &state, cl_program program);

} // namespace corvane
