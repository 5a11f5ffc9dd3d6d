// Keeps a queue of tasks and the thread that runs them.

#include "tuner/TuningThread.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

using namespace corvane;

namespace {
struct TaskQueue {
  std::mutex lock;
  std::condition_variable filled;
  std::condition_variable emptied;
  std::deque<std::unique_ptr<TuningTask>> tasks;
  bool hasThread = false;
  bool isBusy = false; ///< with a task that is taken off the list
  std::thread::id thread;
};
} // namespace

static std::atomic<bool> stopped{false};
static std::atomic<bool> abandoned{false};
static std::atomic<bool> wasStarted{false};

// Never destroyed: the thread outlives every destructor of the process.
static TaskQueue &taskQueue() {
  static TaskQueue *const queue = new TaskQueue;
  return *queue;
}

static std::unique_ptr<TuningTask> takeTask(TaskQueue &queue) {
  std::unique_lock<std::mutex> guard(queue.lock);
  queue.filled.wait(guard, [&queue] { return !queue.tasks.empty(); });
  std::unique_ptr<TuningTask> task = std::move(queue.tasks.front());
  queue.tasks.pop_front();
  queue.isBusy = true;
  return task;
}

static void finishTask(TaskQueue &queue) {
  const std::lock_guard<std::mutex> guard(queue.lock);
  queue.isBusy = false;
  queue.emptied.notify_all();
}

static void runTasks(TaskQueue &queue) {
  for (;;) {
    std::unique_ptr<TuningTask> task = takeTask(queue);
    task->run();
    task.reset();
    finishTask(queue);
  }
}

static bool startThread(TaskQueue &queue) {
  try {
    std::thread thread(runTasks, std::ref(queue));
    queue.thread = thread.get_id();
    wasStarted = true;
    thread.detach();
  } catch (const std::system_error &) {
    return false;
  }
  return true;
}

bool corvane::postTuningTask(std::unique_ptr<TuningTask> &task) {
  if (tuningIsStopped() || abandoned)
    return false;
  TaskQueue &queue = taskQueue();
  std::lock_guard<std::mutex> guard(queue.lock);
  if (!queue.hasThread)
    queue.hasThread = startThread(queue);
  if (!queue.hasThread)
    return false;
  queue.tasks.push_back(std::move(task));
  queue.filled.notify_one();
  return true;
}

void corvane::stopTuning() { stopped = true; }

bool corvane::tuningIsStopped() { return stopped; }

bool corvane::waitForTuning(std::chrono::milliseconds most) {
  // At the end of a process there may be no memory for the list.
  if (!wasStarted)
    return true;
  TaskQueue &queue = taskQueue();
  std::unique_lock<std::mutex> guard(queue.lock);
  if (queue.thread == std::this_thread::get_id())
    return false;
  return queue.emptied.wait_for(
      guard, most, [&queue] { return queue.tasks.empty() && !queue.isBusy; });
}

void corvane::abandonTuning() { abandoned = true; }

void corvane::leaveIfAbandoned() {
  while (abandoned)
    std::this_thread::sleep_for(std::chrono::hours(1));
}

void corvane::resumeTuning() { stopped = false; }
