// The threads of the loose runtime, which do things late and in any order.

#include "tests/support/loose/Board.h"

#include <random>
#include <utility>

using namespace corvane::test::loose;

Board::Board(Nature ofRuntime) : nature(std::move(ofRuntime)) {
  if (nature.atOnce)
    return;
  for (std::size_t runner = 0; runner != runners; ++runner)
    threads.emplace_back([this, runner] { runTasks(runner); });
}

Board::~Board() {
  over = true;
  for (std::thread &thread : threads)
    thread.join();
}

void Board::submit(Task task) {
  if (nature.atOnce) {
    if (!task.isDue())
      blame("a command waits for one that was never enqueued");
    task.work();
    return;
  }
  unfinished.fetch_add(1, std::memory_order_relaxed);
  const std::size_t runner =
      submitted.fetch_add(1, std::memory_order_relaxed) % runners;
  inboxes[runner].add(std::move(task));
}

void Board::drain() const {
  while (unfinished.load(std::memory_order_acquire) != 0)
    std::this_thread::yield();
}

void Board::noteTold(const std::string &row) {
  if (nature.remembersRuns && !row.empty())
    told.add({row, !flushIsAnnounced()});
}

namespace {
/// The tasks of one thread; which of them is done next is up to chance.
class Pile {
public:
  explicit Pile(unsigned seed) : random(seed) {}

  void add(std::vector<Board::Task> more) {
    for (Board::Task &task : more)
      tasks.push_back(std::move(task));
  }

  /// Does one of the tasks that are due; false if there is none, or just so.
  bool doOne() {
    if (tasks.empty() || random() % 4 == 0)
      return false;
    const std::size_t first = random() % tasks.size();
    for (std::size_t i = 0; i != tasks.size(); ++i) {
      const std::size_t at = (first + i) % tasks.size();
      if (!tasks[at].isDue())
        continue;
      const Board::Task task = std::move(tasks[at]);
      tasks[at] = std::move(tasks.back());
      tasks.pop_back();
      task.work();
      return true;
    }
    return false;
  }

private:
  std::minstd_rand random;
  std::vector<Board::Task> tasks;
};
} // namespace

void Board::runTasks(std::size_t runner) {
  Pile pile(nature.seed + static_cast<unsigned>(runner));
  while (!over.load(std::memory_order_relaxed)) {
    pile.add(inboxes[runner].take());
    if (pile.doOne())
      unfinished.fetch_sub(1, std::memory_order_release);
    else
      std::this_thread::yield();
  }
}
