// A runtime that does nothing, so that what remains is the agent's own cost.

#pragma once

#include "agent/DispatchTable.h"

namespace corvane::bench {

namespace null {
extern const DispatchTable theTable;
} // namespace null

/// The functions themselves. They create and count objects, answer questions
/// about them, and complete every command at once; nothing is checked.
///
/// clCreateProgramWithSource takes a text that lists the names of the program's
/// kernels, separated by blanks. Kernels have two arguments, and those with
/// "_coarsed_" in their name a third.
inline const DispatchTable &bare() { return null::theTable; }

/// The table with the agent's hooks; the same functions until it is loaded.
const DispatchTable &hooked();

/// Loads the agent over the functions; unloads it at the end. One at a time.
class LoadedAgent {
public:
  LoadedAgent();
  ~LoadedAgent();
  LoadedAgent(const LoadedAgent &) = delete;
  LoadedAgent &operator=(const LoadedAgent &) = delete;
};

/// The kernel that this thread has launched last.
cl_kernel lastLaunched();

namespace null {

/// Each puts its functions into the table.
void addPrograms(DispatchTable &table);
void addKernels(DispatchTable &table);
void addBuffers(DispatchTable &table);
void addCommands(DispatchTable &table);

/// Answers a query with \p size bytes of \p data.
cl_int answer(const void *data, std::size_t size, std::size_t capacity,
              void *value, std::size_t *sizeRet);

} // namespace null

} // namespace corvane::bench
