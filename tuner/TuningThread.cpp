// Keeps a queue of tasks and the thread that runs them.

#include "tuner/TuningThread.h"

#include <atomic>
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
  std::deque<std::unique_ptr<TuningTask>> tasks;
  bool hasThread = false;
};
} // namespace

static std::atomic<bool> stopped{false};

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
  return task;
}

static void runTasks(TaskQueue &queue) {
  for (;;)
    takeTask(queue)->run();
}

static bool startThread(TaskQueue &queue) {
  try {
    std::thread(runTasks, std::ref(queue)).detach();
  } catch (const std::system_error &) {
    return false;
  }
  return true;
}

bool corvane::postTuningTask(std::unique_ptr<TuningTask> &task) {
  if (tuningIsStopped())
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

void corvane::resumeTuning() { stopped = false; }
