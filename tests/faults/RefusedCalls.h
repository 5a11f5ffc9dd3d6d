// One call, made again for every request for memory that can be refused to it.

#pragma once

#include "agent/Environment.h"
#include "tests/behaviour/Calls.h"
#include "tests/support/AgentMemory.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/FakeRuntime.h"
#include "tests/support/Frontier.h"
#include "tests/support/TempFolder.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <CL/cl.h>

#include <map>
#include <new>
#include <string>
#include <vector>

namespace corvane::test {

/// An agent that autotunes, and a program that it knows: the kernel k with two
/// variants, and j without.
class RefusedCalls : public testing::Test {
protected:
  RefusedCalls() {
    program.kernel("k", 3)
        .kernel("k_coarsed_g0S2", 3)
        .kernel("k_coarsed_r1g0S4", 3)
        .kernel("j", 1);
    frontier.load();
    EXPECT_EQ(build(cl(), program), CL_SUCCESS);
  }
  ~RefusedCalls() override { frontier.unload(); }

  const DispatchTable &cl() const { return frontier.table(); }

  /// Refuses the first request of the call, then its second alone, and so on
  /// until nothing is refused any more. After each exception everything is as
  /// it was before. What the agent can do without it may do without; then
  /// \p undo undoes the call. So many times, \p shared, the call may leave what
  /// all later ones share.
  template <typename Call, typename Undo>
  void refuseEach(Call call, Undo undo, std::size_t shared = 0) {
    std::size_t exceptions = 0;
    std::size_t left = 0;
    for (std::size_t n = 1; !HasFailure(); ++n) {
      SCOPED_TRACE("request " + std::to_string(n) + " is refused");
      const std::vector<std::string> before = everything();
      const std::size_t blocks = AgentMemory::liveBlocks();
      AgentMemory::refuse(n);
      bool thrown = false;
      try {
        EXPECT_EQ(call(), CL_SUCCESS);
      } catch (const std::bad_alloc &) {
        thrown = true;
      }
      const bool refused = AgentMemory::refuseNothing();
      if (thrown) {
        ++exceptions;
        EXPECT_TRUE(refused);
        EXPECT_EQ(everything(), before);
        left += AgentMemory::liveBlocks() > blocks + 1; // a larger table
        EXPECT_LE(left, shared);
      } else if (refused) {
        undo();
      } else {
        break;
      }
    }
    EXPECT_GT(exceptions, 0U);
  }

private:
  // What is there of the runtime's, and what is said of the program. A kind's
  // numbers go up.
  std::vector<std::string> everything() {
    std::vector<std::string> all{kernelNames(cl(), program)};
    for (const char *kind : {"kernel", "buffer", "program", "event"})
      for (const std::string &name : runtime.alive(kind))
        all.push_back(name.substr(0, name.find_last_of(' ')));
    return all;
  }

protected:
  FakeRuntime runtime;
  TempFolder folder;
  EnvGuard tuning{variable::autotune, folder.text()};
  EnvGuard installed{variable::installLocation, "/nowhere"};
  Frontier frontier{runtime};
  ProgramScript program = runtime.addProgram();
};

} // namespace corvane::test
