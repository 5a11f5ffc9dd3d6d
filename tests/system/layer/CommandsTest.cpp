// Tests of commands beside autotuned launches, over a runtime in which only
// wait lists order two commands and each runs when the test says.

#include "tests/system/layer/LayeredRuntime.h"

#include <atomic>
#include <future>
#include <thread>
#include <utility>

using namespace corvane::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {
using Bytes = std::vector<unsigned char>;

/// A kernel that works on the first byte of its buffer, and a variant that
/// spoils that byte. "single" does the same without a variant.
class LayeredCommands : public LayeredRuntime {
protected:
  void SetUp() override {
    loadAutotuning();
    const auto count = [](const Launch &l) { ++l.buffer(0)[0]; };
    const auto spoil = [](const Launch &l) { l.buffer(0)[0] = 99; };
    runtime.sourceMakes()
        .kernel("k", 1, count)
        .kernel("k_coarsed_g0S4", 1, spoil)
        .kernel("single", 1, count);
    program = createProgram();
    build(program);
    kernel = create("k");
    buffer = createBuffer({1, 2});
    set(kernel, buffer);
    inOrder = createQueue(0);
    beside = createQueue(0);
    outOfOrder = createQueue(CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE);
    runtime.late();
    runtime.forgetTranscript();
  }

  cl_kernel create(const char *name) {
    return cl().clCreateKernel(program, name, nullptr);
  }
  void set(cl_kernel where, cl_mem value) {
    EXPECT_EQ(cl().clSetKernelArg(where, 0, sizeof value, &value), CL_SUCCESS);
  }
  cl_mem createBuffer(Bytes bytes) {
    return cl().clCreateBuffer(runtime.context(), CL_MEM_COPY_HOST_PTR,
                               bytes.size(), bytes.data(), nullptr);
  }
  cl_command_queue createQueue(cl_command_queue_properties properties) {
    return cl().clCreateCommandQueue(runtime.context(), runtime.device(),
                                     properties, nullptr);
  }
  cl_event launch(cl_command_queue queue,
                  const std::vector<cl_event> &waits = {}) {
    cl_event event = nullptr;
    EXPECT_EQ(launchOn(queue, waits, &event), CL_SUCCESS);
    return event;
  }
  cl_int launchOn(cl_command_queue queue, const std::vector<cl_event> &waits,
                  cl_event *event) {
    const size_t global = 64;
    const size_t local = 16;
    return cl().clEnqueueNDRangeKernel(
        queue, kernel, 1, nullptr, &global, &local,
        static_cast<cl_uint>(waits.size()),
        waits.empty() ? nullptr : waits.data(), event);
  }
  cl_int write(cl_command_queue queue, cl_event *event = nullptr,
               cl_bool blocking = CL_FALSE,
               const std::vector<cl_event> &waits = {}) {
    static const unsigned char fresh = 7;
    return cl().clEnqueueWriteBuffer(queue, buffer, blocking, 1, 1, &fresh,
                                     static_cast<cl_uint>(waits.size()),
                                     waits.empty() ? nullptr : waits.data(),
                                     event);
  }
  void release(cl_event event) {
    EXPECT_EQ(cl().clReleaseEvent(event), CL_SUCCESS);
  }
  std::vector<std::string> launches() {
    return runtime.transcript({"clEnqueueNDRangeKernel"});
  }
  /// Runs all commands, the youngest first if wait lists allow.
  void runYoungestFirst() {
    while (runtime.runLast()) {
    }
  }
  std::string folderLog() const { return folder.read("out/.auto.csv"); }
  Bytes bytes() { return runtime.bytes(buffer); }

  cl_program program = nullptr;
  cl_kernel kernel = nullptr;
  cl_mem buffer = nullptr;
  cl_command_queue inOrder = nullptr;
  cl_command_queue beside = nullptr;
  cl_command_queue outOfOrder = nullptr;
};
} // namespace

TEST_F(LayeredCommands, WaitForTheEndOfATunedLaunchOnTheSameBuffer) {
  const cl_event run = launch(inOrder);
  EXPECT_THAT(launches(), SizeIs(2));
  EXPECT_EQ(write(beside), CL_SUCCESS);
  EXPECT_THAT(runtime.waiting().back(), HasSubstr("[event 4]"));
  runYoungestFirst();
  EXPECT_EQ(bytes(), (Bytes{2, 7}));
  release(run);
}

TEST_F(LayeredCommands, WaitForItInAQueueOutOfOrder) {
  launch(outOfOrder);
  EXPECT_EQ(write(outOfOrder), CL_SUCCESS);
  runYoungestFirst();
  EXPECT_EQ(bytes(), (Bytes{2, 7}));
}

TEST_F(LayeredCommands, ThatBlockWaitForItToo) {
  launch(inOrder);
  EXPECT_EQ(write(beside, nullptr, CL_TRUE), CL_SUCCESS);
  EXPECT_EQ(bytes(), (Bytes{2, 7}));
  EXPECT_THAT(runtime.waiting(), IsEmpty());
}

TEST_F(LayeredCommands, AddTheirOwnWaitsToThat) {
  const cl_event start = runtime.addEvent();
  launch(inOrder);
  EXPECT_EQ(write(beside, nullptr, CL_FALSE, {start}), CL_SUCCESS);
  EXPECT_THAT(runtime.waiting().back(), HasSubstr("[event 1, event 5]"));
  runtime.endEvent(start);
  runtime.runAll();
  EXPECT_EQ(bytes(), (Bytes{2, 7}));
}

TEST_F(LayeredCommands, OnOtherBuffersWaitForNothing) {
  launch(inOrder);
  buffer = createBuffer({5, 6});
  EXPECT_EQ(write(beside), CL_SUCCESS);
  EXPECT_THAT(runtime.waiting().back(), HasSubstr(", [], "));
  runtime.runAll();
}

TEST_F(LayeredCommands, OfTheSameQueueInOrderWaitForNothingMore) {
  launch(inOrder);
  EXPECT_EQ(write(inOrder), CL_SUCCESS);
  EXPECT_THAT(runtime.waiting().back(), HasSubstr(", [], "));
  runtime.runAll();
}

TEST_F(LayeredCommands, InFlightOnItsBufferMakeALaunchRunAlone) {
  EXPECT_EQ(write(beside), CL_SUCCESS);
  const cl_event run = launch(inOrder);
  EXPECT_THAT(launches(), ElementsAre(HasSubstr("kernel k, ")));
  EXPECT_THAT(runtime.transcript({"clEnqueueReadBuffer"}), IsEmpty());
  runYoungestFirst();
  EXPECT_EQ(bytes(), (Bytes{2, 7}));
  release(run);
}

TEST_F(LayeredCommands, OnUnknownMemoryMakeALaunchRunAlone) {
  cl_kernel other = create("single");
  set(other, createBuffer({5, 6}));
  EXPECT_EQ(cl().clSetKernelArgSVMPointer(other, 0, this), CL_SUCCESS);
  std::swap(kernel, other);
  launch(beside);
  std::swap(kernel, other);
  launch(inOrder);
  EXPECT_THAT(launches(), ElementsAre(HasSubstr("kernel single, "),
                                      HasSubstr("kernel k, ")));
  runtime.runAll();
}

// The clone's memory is that of the kernel it was made from.
TEST_F(LayeredCommands, OfAClonedKernelOnUnknownMemoryMakeALaunchRunAlone) {
  const cl_kernel other = create("single");
  EXPECT_EQ(cl().clSetKernelArgSVMPointer(other, 0, this), CL_SUCCESS);
  cl_kernel clone = cl().clCloneKernel(other, nullptr);
  set(clone, createBuffer({5, 6}));
  std::swap(kernel, clone);
  launch(beside);
  std::swap(kernel, clone);
  launch(inOrder);
  EXPECT_THAT(launches(), ElementsAre(HasSubstr("kernel single 2, "),
                                      HasSubstr("kernel k, ")));
  runtime.runAll();
}

TEST_F(LayeredCommands, ThatAreOverLeaveALaunchToBeTuned) {
  EXPECT_EQ(write(beside), CL_SUCCESS);
  runtime.runAll();
  launch(inOrder);
  EXPECT_THAT(launches(), SizeIs(2));
  runtime.runAll();
  EXPECT_EQ(bytes(), (Bytes{2, 7}));
}

TEST_F(LayeredCommands, ThatALaunchWaitsForLeaveItToBeTuned) {
  cl_event written = nullptr;
  EXPECT_EQ(write(beside, &written), CL_SUCCESS);
  launch(inOrder, {written});
  EXPECT_THAT(launches(), SizeIs(2));
  EXPECT_THAT(runtime.transcript({"clFlush"}),
              ElementsAre("clFlush(queue 2)", "clFlush(queue 1)"));
  runYoungestFirst();
  EXPECT_EQ(bytes(), (Bytes{2, 7}));
  release(written);
}

TEST_F(LayeredCommands, BeforeWhatALaunchWaitsForLeaveItToBeTuned) {
  EXPECT_EQ(write(beside), CL_SUCCESS);
  cl_event second = nullptr;
  EXPECT_EQ(write(beside, &second), CL_SUCCESS);
  launch(inOrder, {second});
  EXPECT_THAT(launches(), SizeIs(2));
  runtime.runAll();
  release(second);
}

TEST_F(LayeredCommands, EndBeforeALaunchThatWaitsForAnotherOne) {
  // Only the second command orders the first before the third.
  EXPECT_EQ(write(outOfOrder), CL_SUCCESS);
  cl_event second = nullptr;
  EXPECT_EQ(write(outOfOrder, &second), CL_SUCCESS);
  launch(inOrder, {second});
  EXPECT_THAT(launches(), SizeIs(1)) << "the first write may still run";
  runtime.runAll();
  release(second);
}

TEST_F(LayeredCommands, ThatAreTunedWaitForEachOther) {
  launch(inOrder);
  launch(beside);
  EXPECT_THAT(launches(), SizeIs(4));
  runYoungestFirst();
  EXPECT_EQ(bytes(), (Bytes{3, 2}));
}

TEST_F(LayeredCommands, WithoutVariantsAreTimedWhateverElseIsInFlight) {
  kernel = create("single");
  set(kernel, buffer);
  EXPECT_EQ(write(beside), CL_SUCCESS);
  launch(inOrder);
  runtime.runAll();
  EXPECT_THAT(folderLog(), HasSubstr("single,64,,,16,,,baseline,"));
}

TEST_F(LayeredCommands, ThatWaitForTheApplicationAreNotTuned) {
  const cl_event start = runtime.addEvent();
  launch(inOrder, {start});
  EXPECT_THAT(launches(), SizeIs(1));
  runtime.endEvent(start);
  runtime.runAll();
}

TEST_F(LayeredCommands, AfterOneThatWaitsForTheApplicationAreNotTuned) {
  const cl_event start = runtime.addEvent();
  cl_event first = nullptr;
  EXPECT_EQ(write(beside, &first, CL_FALSE, {start}), CL_SUCCESS);
  launch(inOrder, {first});
  EXPECT_THAT(launches(), SizeIs(1));
  launch(inOrder);
  EXPECT_THAT(launches(), SizeIs(2)) << "in order after the first";
  runtime.endEvent(start);
  runtime.runAll();
  launch(inOrder);
  EXPECT_THAT(launches(), SizeIs(4)) << "nothing is in the way any more";
  runtime.runAll();
  release(first);
}

TEST_F(LayeredCommands, AreTunedOnceTheApplicationHasLetThemGo) {
  const cl_event start = runtime.addEvent();
  cl_event first = nullptr;
  EXPECT_EQ(write(beside, &first, CL_FALSE, {start}), CL_SUCCESS);
  runtime.endEvent(start); // but the write has not run
  launch(inOrder, {first});
  EXPECT_THAT(launches(), SizeIs(2));
  runtime.runAll();
  release(first);
}

TEST_F(LayeredCommands, ThatFailLeaveNothingBehind) {
  runtime.answer("clEnqueueWriteBuffer", CL_OUT_OF_RESOURCES, 1);
  EXPECT_EQ(write(beside), CL_OUT_OF_RESOURCES);
  launch(inOrder);
  EXPECT_THAT(launches(), SizeIs(2));
  runtime.runAll();
}

TEST_F(LayeredCommands, WaitForWhatAFailedLaunchHasLeftUnderWay) {
  // The variant's launch works, the kernel's does not.
  runtime.answer("clEnqueueNDRangeKernel", CL_OUT_OF_RESOURCES, 2);
  testing::internal::CaptureStderr();
  EXPECT_EQ(launchOn(inOrder, {}, nullptr), CL_OUT_OF_RESOURCES);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "QrlAgent:: 1145: CL Error: CL_OUT_OF_RESOURCES\n");
  EXPECT_EQ(write(beside), CL_SUCCESS);
  runYoungestFirst();
  EXPECT_EQ(bytes(), (Bytes{1, 7}));
}

TEST_F(LayeredCommands, WithAWaitListThatIsNoneAreTheRuntimesToRefuse) {
  const unsigned char fresh = 7;
  EXPECT_EQ(cl().clEnqueueWriteBuffer(inOrder, buffer, CL_FALSE, 0, 1, &fresh,
                                      1, nullptr, nullptr),
            CL_INVALID_EVENT_WAIT_LIST);
  EXPECT_EQ(cl().clEnqueueWriteBuffer(nullptr, buffer, CL_FALSE, 0, 1, &fresh,
                                      0, nullptr, nullptr),
            CL_INVALID_COMMAND_QUEUE);
}

TEST_F(LayeredCommands, HaveNoEventsWhenAllIsOver) {
  launch(inOrder);
  EXPECT_EQ(write(beside), CL_SUCCESS);
  release(launch(outOfOrder));
  runtime.runAll();
  EXPECT_EQ(cl().clFinish(inOrder), CL_SUCCESS);
  EXPECT_EQ(cl().clFinish(beside), CL_SUCCESS);
  EXPECT_EQ(cl().clFinish(outOfOrder), CL_SUCCESS);
  // The event that is left is the application's, of the first launch.
  EXPECT_THAT(runtime.alive("event"), SizeIs(1));
}

TEST_F(LayeredCommands, DoNotCollectEventsInAProgramThatNeverWaits) {
  for (int i = 0; i != 500; ++i) {
    EXPECT_EQ(write(i % 2 == 0 ? inOrder : beside), CL_SUCCESS);
    runtime.runAll();
  }
  EXPECT_THAT(runtime.alive("event").size(), testing::Le(80u));
}

TEST_F(LayeredCommands, TellTheApplicationItsOwnReferencesToAnEvent) {
  cl_event written = nullptr;
  EXPECT_EQ(write(beside, &written), CL_SUCCESS);
  const auto references = [&] {
    cl_uint count = 0;
    EXPECT_EQ(cl().clGetEventInfo(written, CL_EVENT_REFERENCE_COUNT,
                                  sizeof count, &count, nullptr),
              CL_SUCCESS);
    return count;
  };
  EXPECT_EQ(references(), 1u);
  EXPECT_EQ(cl().clRetainEvent(written), CL_SUCCESS);
  EXPECT_EQ(references(), 2u);
  release(written);
  EXPECT_EQ(references(), 1u);
  runtime.runAll();
  EXPECT_EQ(cl().clFinish(beside), CL_SUCCESS);
  EXPECT_EQ(references(), 1u);
  release(written);
  EXPECT_THAT(runtime.alive("event"), IsEmpty());
}

TEST_F(LayeredCommands, OfAnotherThreadWaitUntilATunedLaunchIsEnqueued) {
  // Another thread writes to the same queue during the call of a launch.
  std::thread other;
  runtime.whenCalled("clEnqueueReadBuffer", [&] {
    if (!other.joinable())
      other = std::thread([&] { EXPECT_EQ(write(inOrder), CL_SUCCESS); });
  });
  launch(inOrder);
  other.join();
  EXPECT_THAT(runtime.waiting().back(), HasSubstr("clEnqueueWriteBuffer"));
  runYoungestFirst();
}

TEST_F(LayeredCommands, EnteringAQueueMayHoldUpALaunchThere) {
  const cl_event start = runtime.addEvent();
  const cl_mem other = createBuffer({5, 6});
  set(kernel, other);
  std::size_t launched = 0;
  runtime.whenCalled("clEnqueueWriteBuffer", [&] {
    if (std::exchange(launched, 1) != 0)
      return;
    launch(inOrder);
    launched = launches().size();
  });
  EXPECT_EQ(write(inOrder, nullptr, CL_FALSE, {start}), CL_SUCCESS);
  EXPECT_EQ(launched, 1u) << "alone: the write may come first in the queue";
  runtime.endEvent(start);
  runtime.runAll();

  launched = 0;
  runtime.forgetTranscript();
  EXPECT_EQ(write(inOrder), CL_SUCCESS);
  EXPECT_EQ(launched, 2u) << "the write waits for nothing";
  runtime.runAll();
}

TEST_F(LayeredCommands, OfACallWithinATunedLaunchDoNotWaitForIt) {
  bool called = false;
  runtime.whenCalled("clFlush", [&] {
    if (!std::exchange(called, true)) {
      EXPECT_EQ(write(beside), CL_SUCCESS);
    }
  });
  launch(inOrder);
  EXPECT_TRUE(called);
  runtime.runAll();
}

TEST_F(LayeredCommands, OfACallWithinALaunchDoNotWaitForLaunchesOfOthers) {
  launch(beside); // the next tuned launch waits for it
  const cl_kernel tuned = std::exchange(kernel, create("single"));
  set(kernel, createBuffer({5, 6}));

  // In the middle of a launch, while the agent is locked, another thread begins
  // a tuned one on the buffer: it has flushed, and waits for the agent.
  std::thread other;
  std::promise<void> hasFlushed;
  std::atomic<bool> awaited{false};
  runtime.whenCalled("clFlush", [&] {
    if (awaited.exchange(false))
      hasFlushed.set_value();
  });
  bool called = false;
  runtime.whenCalled("clEnqueueNDRangeKernel", [&] {
    if (std::exchange(called, true))
      return;
    awaited = true;
    other = std::thread([&] {
      const size_t global = 64;
      const size_t local = 16;
      EXPECT_EQ(cl().clEnqueueNDRangeKernel(inOrder, tuned, 1, nullptr, &global,
                                            &local, 0, nullptr, nullptr),
                CL_SUCCESS);
    });
    hasFlushed.get_future().wait();
    EXPECT_EQ(write(outOfOrder), CL_SUCCESS);
  });
  launch(outOfOrder);
  other.join();
  EXPECT_TRUE(called);
  runtime.runAll();
}
