// Puts a variant of a kernel together, or says why there is none.
#pragma once

#include "coarsening/LaneText.h"

namespace corvane::coarsening {

struct KernelVariant {
  std::string spec;     ///< the last part of its name
  std::string text;     ///< with the functions it needs; empty where refused
  std::string analysis; ///< what differs, for people; empty for Sequential
  std::optional<Refusal> refusal;
};

/// Makes the variant of `kernel` that `plan` asks for.
KernelVariant makeVariant(const clang::FunctionDecl &kernel, const Plan &plan,
                          const ProgramText &program, const Names &names,
                          FunctionTable &functions);

} // namespace corvane::coarsening
