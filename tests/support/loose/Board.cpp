// The threads of the loose runtime, which do things late and in any order.

#include "tests/support/loose/Board.h"

#include <random>
#include <utility>

using namespace corvane::test::loose;

Board::Board(Nature ofRuntime) : nature(std::move(ofRuntime)) {
  if (nature.atOnce)
    return;
  for (std::size_t runner = 0; runner != runners; ++runner)
    threads.emplace_back([this, runner] { runErrands(runner); });
}

Board::~Board() {
  over = true;
  for (std::thread &thread : threads)
    thread.join();
}

void Board::submit(Errand errand) {
  if (nature.atOnce) {
    if (!errand.isDue())
      blame("a command waits for one that was never enqueued");
    errand.work();
    return;
  }
  unfinished.fetch_add(1, std::memory_order_relaxed);
  const std::size_t runner =
      submitted.fetch_add(1, std::memory_order_relaxed) % runners;
  inboxes[runner].add(std::move(errand));
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
/// The errands of one thread; which of them is done next is up to chance.
class Pile {
public:
  explicit Pile(unsigned seed) : random(seed) {}

  void add(std::vector<Board::Errand> more) {
    for (Board::Errand &errand : more)
      errands.push_back(std::move(errand));
  }

  /// Does one of the errands that are due; false if there is none, or just so.
  bool doOne() {
    if (errands.empty() || random() % 4 == 0)
      return false;
    const std::size_t first = random() % errands.size();
    for (std::size_t i = 0; i != errands.size(); ++i) {
      const std::size_t at = (first + i) % errands.size();
      if (!errands[at].isDue())
        continue;
      const Board::Errand errand = std::move(errands[at]);
      errands[at] = std::move(errands.back());
      errands.pop_back();
      errand.work();
      return true;
    }
    return false;
  }

private:
  std::minstd_rand random;
  std::vector<Board::Errand> errands;
};
} // namespace

void Board::runErrands(std::size_t runner) {
  Pile pile(nature.seed + static_cast<unsigned>(runner));
  while (!over.load(std::memory_order_relaxed)) {
    pile.add(inboxes[runner].take());
    if (pile.doOne())
      unfinished.fetch_sub(1, std::memory_order_release);
    else
      std::this_thread::yield();
  }
}
