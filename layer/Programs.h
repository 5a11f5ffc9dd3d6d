// What the layer knows of the application's programs.

#pragma once

#include "layer/LayerTable.h"
#include "layer/ObjectTable.h"

#include <memory>
#include <string>
#include <vector>

namespace corvane {
struct ProgramOrigin;
}

namespace corvane::layer {

class Companion;

/// A program that the application holds.
struct ProgramInfo {
  /// Names of kernels that the agent keeps to itself, sorted.
  std::vector<std::string> hidden;
  /// Builds and links of it that the agent has not seen the end of.
  unsigned builds = 0;
  /// Of the latest build; null if it has none.
  std::shared_ptr<const Companion> companion;
  bool isFromBinary = false;
  /// What the binary was made of; null if it is not known, or is no binary.
  std::shared_ptr<const ProgramOrigin> origin;
};

/// The programs that the application may have built. The agent keeps records
/// only of programs that are in this table.
///
/// The agent counts builds where the application counts references. It is told
/// of a release only with the last reference, so a program keeps its variants
/// until then and no record outlives its program.
ObjectTable<cl_program, ProgramInfo> &programs();

/// Enters a program that was just made. Whatever agent or layer knew of an
/// older one with the same handle is forgotten.
void enterNewProgram(cl_program program);

/// Enters a program whose creation went past the layer. Does nothing for one
/// that is known, or for a handle that is no program's.
void enterUnseenProgram(cl_program program);

/// Has the agent drop its record of a living program, if it has one.
void forgetBuilds(cl_program program);

} // namespace corvane::layer
