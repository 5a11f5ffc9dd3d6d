// The thread on which kernels are measured.

#include "tuner/TuningThread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

using namespace corvane;

namespace {
struct Task : TuningTask {
  explicit Task(std::function<void()> toRun) : body(std::move(toRun)) {}
  void run() noexcept override { body(); }
  std::function<void()> body;
};

bool post(std::function<void()> body) {
  std::unique_ptr<TuningTask> task = std::make_unique<Task>(std::move(body));
  return postTuningTask(task);
}
} // namespace

TEST(TuningThread, RunsTasksInOrderOnOneThreadOfItsOwn) {
  std::vector<int> order;
  std::vector<std::thread::id> threads;
  std::promise<void> last;
  for (int i = 0; i != 100; ++i)
    ASSERT_TRUE(post([&, i] {
      order.push_back(i);
      threads.push_back(std::this_thread::get_id());
      if (i == 99)
        last.set_value();
    }));
  last.get_future().wait();
  for (int i = 0; i != 100; ++i) {
    EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
    EXPECT_EQ(threads[static_cast<std::size_t>(i)], threads[0]);
  }
  EXPECT_NE(threads[0], std::this_thread::get_id());
}

TEST(TuningThread, TakesTasksFromATask) {
  std::promise<void> inner;
  ASSERT_TRUE(post([&] { post([&] { inner.set_value(); }); }));
  inner.get_future().wait();
}

TEST(TuningThread, IsWaitedForUntilItsTasksAreOver) {
  std::promise<void> gate;
  std::atomic<int> over{0};
  ASSERT_TRUE(post([&] {
    gate.get_future().wait();
    ++over;
  }));
  ASSERT_TRUE(post([&] { ++over; }));
  EXPECT_FALSE(waitForTuning(std::chrono::milliseconds(1)));
  gate.set_value();
  EXPECT_TRUE(waitForTuning(std::chrono::hours(1)));
  EXPECT_EQ(over, 2);
}

TEST(TuningThread, DoesNotWaitForItself) {
  std::promise<bool> answer;
  ASSERT_TRUE(
      post([&] { answer.set_value(waitForTuning(std::chrono::hours(1))); }));
  EXPECT_FALSE(answer.get_future().get());
}

TEST(TuningThread, LeavesTasksToTheCallerOnceTuningIsStopped) {
  stopTuning();
  std::unique_ptr<TuningTask> task = std::make_unique<Task>([] {});
  EXPECT_FALSE(postTuningTask(task));
  EXPECT_TRUE(task);
  resumeTuning();
  EXPECT_TRUE(postTuningTask(task));
  EXPECT_FALSE(task);
}
