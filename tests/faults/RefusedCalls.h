// Makes one call again and again, refusing each of its requests for memory in
// turn.

#pragma once

#include "agent/Environment.h"
#include "tests/behaviour/Calls.h"
#include "tests/support/AgentBoundary.h"
#include "tests/support/AgentMemory.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/FakeRuntime.h"
#include "tests/support/TempFolder.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <CL/cl.h>

#include <map>
#include <new>
#include <string>
#include <vector>

namespace corvane::test {

/// An agent that autotunes and knows a program of the kernel k, with two
/// variants, and the kernel j, without.
class RefusedCalls : public testing::Test {
protected:
  RefusedCalls() {
    program.kernel("k", 3)
        .kernel("k_coarsed_g0S2", 3)
        .kernel("k_coarsed_r1g0S4", 3)
        .kernel("j", 1);
    boundary.load();
    EXPECT_EQ(build(cl(), program), CL_SUCCESS);
  }
  ~RefusedCalls() override { boundary.unload(); }

  const DispatchTable &cl() const { return boundary.table(); }

  /// Makes the call with its first request refused, then with its second alone,
  /// and so on until the call makes no such request. After each exception
  /// everything has to be as before. If the call does without the memory, \p
  /// undo undoes it. At most \p shared times the call may leave memory that all
  /// later calls share.
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
  // All objects of the runtime, and what the program answers. Objects of a kind
  // are numbered in order of creation.
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
  AgentBoundary boundary{runtime};
  ProgramScript program = runtime.addProgram();
};

} // namespace corvane::test
