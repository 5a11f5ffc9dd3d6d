// Reads what Oclgrind, a simulator of OpenCL devices, writes about kernels.

#pragma once

#include "llvm/ADT/StringRef.h"

#include <cstddef>
#include <string>
#include <vector>

namespace corvane {

/// The same mistake at the same place of a kernel.
struct SimulatorFinding {
  std::string what;     ///< as "Invalid write of size 4", without an address
  std::string kernel;   ///< the full name, as "blur_coarsed_g0S4"
  std::string workItem; ///< the first that made it, as "511,0,0"
  std::string place;    ///< as "line 24 of input.cl"; may be empty
  std::string source;   ///< the line of the source there; may be empty
  std::size_t count = 0;
};

/// The findings in the order in which they first occur. What is no message of
/// the simulator's is passed over.
std::vector<SimulatorFinding> readSimulatorLog(llvm::StringRef text);

} // namespace corvane
