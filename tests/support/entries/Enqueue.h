// What the enqueuing entries of the scripted runtime share.

#pragma once

#include "tests/support/World.h"

#include <CL/cl.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace corvane::test::fake {

/// The queue, wait list and event of a command, as the application gave them.
struct Enqueued {
  cl_command_queue queue;
  cl_uint waitCount;
  const cl_event *waitList;
  cl_event *event; ///< null: not wanted
};

/// Makes a command out of a call to \p entry, records the call and runs the
/// command, or leaves it for later. \p words are the arguments before the wait
/// list; \p plan fills in what the command needs and does, with the world's
/// lock held, or returns a failure. Returns the runtime's status.
cl_int enqueue(World &world, const char *entry, std::vector<std::string> words,
               const Enqueued &enqueued,
               const std::function<cl_int(Command &)> &plan);

} // namespace corvane::test::fake
