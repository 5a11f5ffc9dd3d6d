// What the inspecting test agent found out about the object it was given.

#pragma once

#include <CL/cl.h>

namespace corvane::test {

constexpr unsigned agentOperations = 32;
constexpr unsigned agentEntries = 119;

/// Filled by `clAgent_OnLoad`; a test gets it with the exported function
/// `findings`.
struct Findings {
  cl_int statuses[agentOperations]; ///< each operation, called without a table
  bool isNull[agentOperations];
  cl_int getShort, getLong, setShort, setLong; ///< one entry less, one more
  cl_int get, set;
  void *table[agentEntries];      ///< as the first get gave it
  void *tableAgain[agentEntries]; ///< as a get after the set gave it
};

using FindingsFunction = const Findings *(CL_API_CALL *)();

/// Entry \p index of the table that the agent installs.
inline void *agentEntry(unsigned index) {
  return reinterpret_cast<void *>(static_cast<size_t>(0xa0000 + index));
}

/// Tries to install the agent's table once more, after `clAgent_OnLoad`.
using InstallFunction = cl_int(CL_API_CALL *)();

} // namespace corvane::test
