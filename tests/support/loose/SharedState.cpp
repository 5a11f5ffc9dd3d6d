// The threads of the loose runtime, which run tasks late and in random order.

#include "tests/support/loose/SharedState.h"

#include <random>
#include <utility>

using namespace corvane::test::loose;

SharedState::SharedState(Behaviour ofRuntime)
    : behaviour(std::move(ofRuntime)) {
  if (behaviour.atOnce)
    return;
  for (std::size_t runner = 0; runner != runners; ++runner)
    threads.emplace_back([this, runner] { runTasks(runner); });
}

SharedState::~SharedState() {
  over = true;
  for (std::thread &thread : threads)
    thread.join();
}

void SharedState::submit(Task task) {
  if (behaviour.atOnce) {
    if (!task.isDue())
      reportMistake("a command waits for one that was never enqueued");
    task.work();
    return;
  }
  unfinished.fetch_add(1, std::memory_order_relaxed);
  const std::size_t runner =
      submitted.fetch_add(1, std::memory_order_relaxed) % runners;
  inboxes[runner].add(std::move(task));
}

void SharedState::drain() const {
  while (unfinished.load(std::memory_order_acquire) != 0)
    std::this_thread::yield();
}

void SharedState::recordReported(const std::string &row) {
  if (behaviour.remembersRuns && !row.empty())
    reported.add({row, !flushIsAnnounced()});
}

namespace {
/// The tasks of one thread, which are done in random order.
class TaskList {
public:
  explicit TaskList(unsigned seed) : random(seed) {}

  void add(std::vector<SharedState::Task> more) {
    for (SharedState::Task &task : more)
      tasks.push_back(std::move(task));
  }

  /// Does one of the tasks that are due. Returns false if none is, and at
  /// random.
  bool doOne() {
    if (tasks.empty() || random() % 4 == 0)
      return false;
    const std::size_t first = random() % tasks.size();
    for (std::size_t i = 0; i != tasks.size(); ++i) {
      const std::size_t at = (first + i) % tasks.size();
      if (!tasks[at].isDue())
        continue;
      const SharedState::Task task = std::move(tasks[at]);
      tasks[at] = std::move(tasks.back());
      tasks.pop_back();
      task.work();
      return true;
    }
    return false;
  }

private:
  std::minstd_rand random;
  std::vector<SharedState::Task> tasks;
};
} // namespace

void SharedState::runTasks(std::size_t runner) {
  TaskList tasks(behaviour.seed + static_cast<unsigned>(runner));
  while (!over.load(std::memory_order_relaxed)) {
    tasks.add(inboxes[runner].take());
    if (tasks.doOne())
      unfinished.fetch_sub(1, std::memory_order_release);
    else
      std::this_thread::yield();
  }
}
