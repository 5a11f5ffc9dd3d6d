// A list that any thread may add to without a lock.

#pragma once

#include <algorithm>
#include <atomic>
#include <utility>
#include <vector>

namespace corvane::test::loose {

/// Adding a value happens before taking it. Two threads that only add have no
/// order.
template <typename Value> class Inbox {
public:
  Inbox() = default;
  ~Inbox() { take(); }
  Inbox(const Inbox &) = delete;
  Inbox &operator=(const Inbox &) = delete;

  void add(Value value) {
    Node *node =
        new Node{std::move(value), newest.load(std::memory_order_relaxed)};
    while (!newest.compare_exchange_weak(node->older, node,
                                         std::memory_order_release,
                                         std::memory_order_relaxed)) {
    }
  }

  /// Empties the list, which is returned oldest first.
  std::vector<Value> take() {
    std::vector<Value> values;
    Node *node = newest.exchange(nullptr, std::memory_order_acquire);
    while (node) {
      values.push_back(std::move(node->value));
      delete std::exchange(node, node->older);
    }
    std::reverse(values.begin(), values.end());
    return values;
  }

private:
  struct Node {
    Value value;
    Node *older;
  };
  std::atomic<Node *> newest{nullptr};
};

} // namespace corvane::test::loose
