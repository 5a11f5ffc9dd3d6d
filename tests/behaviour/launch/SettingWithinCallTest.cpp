// Tests of arguments that are set within another call: a runtime may call the
// application back at any time, and the application may then call the agent.

#include "tests/behaviour/launch/Application.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <array>
#include <utility>
#include <vector>

using namespace corvane;
using namespace corvane::test;
using testing::Contains;

namespace {
class SettingWithinCall : public testing::Test {
protected:
  SettingWithinCall() {
    app.program.kernel("k", 6).kernel("k_coarsed_g0S4", 6);
    app.runtime.allowUnsetArguments();
    kernel = app.create("k");
  }

  // Has the application set the argument at the start of the runtime's next
  // clSetKernelArg.
  void setWithinNext(cl_uint index, const std::vector<unsigned char> &value) {
    app.runtime.whenCalled("clSetKernelArg", [=] {
      if (!std::exchange(waiting, false))
        return;
      EXPECT_EQ(
          app.cl.clSetKernelArg(kernel, index, value.size(), value.data()),
          CL_SUCCESS);
    });
    waiting = true;
  }

  std::vector<std::string> replayed() {
    app.runtime.forgetTranscript();
    EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
    return app.runtime.transcript({"clSetKernelArg"});
  }

  Application app;
  cl_kernel kernel = nullptr;
  bool waiting = false;
};
} // namespace

TEST_F(SettingWithinCall, OfAReplayReachesTheVariantAtItsNextLaunch) {
  app.set(kernel, 0, cl_char{1});
  setWithinNext(0, {2});
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(replayed(),
              Contains("clSetKernelArg(kernel k_coarsed_g0S4, 0, 1, 02)"));
}

TEST_F(SettingWithinCall, OfAReplayMayAddArguments) {
  app.set(kernel, 0, cl_char{1});
  app.set(kernel, 1, cl_char{2});
  setWithinNext(5, {6});
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(replayed(),
              Contains("clSetKernelArg(kernel k_coarsed_g0S4, 1, 1, 02)"));
}

TEST_F(SettingWithinCall, OfTheSameArgumentMayHaveAnotherSize) {
  setWithinNext(0, std::vector<unsigned char>(24, 1));
  app.set(kernel, 0, std::array<unsigned char, 3>{7, 8, 9});
  EXPECT_THAT(replayed(), Contains("clSetKernelArg(kernel k_coarsed_g0S4, 0, "
                                   "3, 07 08 09)"));
}
