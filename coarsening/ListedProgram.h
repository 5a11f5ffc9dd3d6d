// A program with variants and a list of them, for programs that read both.
#pragma once

#include "coarsening/Coarsener.h"

#include <string>

namespace corvane::coarsening {

/// Comments that list the variants of `result`, the files that its source
/// includes, and why there are no variants if there are none; then the program
/// in OpenCL C. docs/coarsening.md describes the lines.
std::string listedProgram(const Coarsened &result);

} // namespace corvane::coarsening
