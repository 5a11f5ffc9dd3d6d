// Tests of the chain of several variants and several buffers.

#include "tests/behaviour/launch/Application.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {
/// Two variants of a kernel of three buffers, with a scalar in between.
struct ThreeBuffers : TuningApplication {
  cl_kernel kernel;
  ThreeBuffers() {
    program.kernel("k", 4);
    program.kernel("k_coarsed_g0S2", 4).kernel("k_coarsed_g0S4", 4);
    kernel = create("k");
    set(kernel, 0, createBuffer({1, 2}));
    set(kernel, 1, cl_ulong{5});
    set(kernel, 2, createBuffer({3, 4, 5}));
    set(kernel, 3, createBuffer({6}));
    runtime.forgetTranscript();
  }
  std::vector<std::string> commands() const {
    return runtime.transcript({"clEnqueueReadBuffer", "clEnqueueWriteBuffer",
                               "clEnqueueNDRangeKernel"});
  }
};

// "[event 3], event 4" is at the end of each command.
std::string tailOf(const std::string &command) {
  return command.substr(command.rfind('['));
}
} // namespace

TEST(LongChain, LetsEachCommandWaitForTheOneBefore) {
  ThreeBuffers app;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  const std::vector<std::string> commands = app.commands();
  ASSERT_THAT(commands, SizeIs(2 * (3 + 1 + 3) + 1));
  EXPECT_EQ(tailOf(commands[0]), "[], event 1)");
  for (std::size_t i = 1; i != commands.size(); ++i)
    EXPECT_EQ(tailOf(commands[i]), "[event " + std::to_string(i) + "], event " +
                                       std::to_string(i + 1) + ")");
}

TEST(LongChain, SavesAndRestoresTheBuffersInSlotOrderAroundEachVariant) {
  ThreeBuffers app;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  std::string order;
  for (const std::string &command : app.commands()) {
    const std::size_t buffer = command.find("buffer ");
    order += command.substr(9, 1); // of clEnqueue...
    order += buffer == std::string::npos ? ' ' : command[buffer + 7];
  }
  EXPECT_EQ(order, "R1R2R3N W1W2W3"
                   "R1R2R3N W1W2W3"
                   "N ");
}

TEST(LongChain, ReleasesEveryEventExactlyOnce) {
  ThreeBuffers app;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  // The event of the kernel's own run comes first, then those of the chain.
  std::vector<std::string> expected = {"clReleaseEvent(event 15)"};
  for (int event = 1; event != 15; ++event)
    expected.push_back("clReleaseEvent(event " + std::to_string(event) + ")");
  EXPECT_THAT(app.runtime.transcript({"clReleaseEvent"}),
              testing::ElementsAreArray(expected));
  EXPECT_THAT(app.runtime.alive("event"), IsEmpty());
}

TEST(LongChain, EndsWithOneFlush) {
  ThreeBuffers app;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.transcript({"clFlush"}), SizeIs(1));
  EXPECT_EQ(app.runtime.transcript().back(), "clFlush(queue 1)");
}

TEST(LongChain, ReplaysTheKernelsOwnArgumentsLastAndOnce) {
  ThreeBuffers app;
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  const std::vector<std::string> calls =
      app.runtime.transcript({"clSetKernelArg", "clEnqueueNDRangeKernel"});
  ASSERT_THAT(calls, SizeIs(3 * (4 + 1)));
  EXPECT_EQ(calls[10], "clSetKernelArg(kernel k, 0, 8, buffer 1)");
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(app.kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.transcript({"clSetKernelArg"}), IsEmpty());
}

TEST(LongChain, LeavesOutVariantsThatReject) {
  TuningApplication app;
  app.program.kernel("k", 1).kernel("k_coarsed_g1S2", 1);
  app.program.kernel("k_coarsed_l0S2", 1).kernel("k_coarsed_g0S1d0S3", 1);
  cl_kernel kernel = app.create("k");
  app.set(kernel, 0, cl_int{4});
  EXPECT_EQ(app.launch(kernel, {16}, {4}), CL_SUCCESS);
  EXPECT_THAT(app.launches(),
              ElementsAre("clEnqueueNDRangeKernel(queue 1, kernel "
                          "k_coarsed_l0S2, 1, null, [8], [2], [], event 1)",
                          "clEnqueueNDRangeKernel(queue 1, kernel k, 1, null, "
                          "[16], [4], [event 1], event 2)"));
}
