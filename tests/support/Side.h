// Whose code a thread is in.

#pragma once

namespace corvane::test {

/// The two sides of the agent's border. A thread starts on the side of
/// everybody else: the application, the runtime, the test.
enum class Side { Outside, Agent };

Side sideOfThread();

/// Puts this thread on a side until the end of its life.
class OnSide {
public:
  explicit OnSide(Side side);
  ~OnSide();
  OnSide(const OnSide &) = delete;
  OnSide &operator=(const OnSide &) = delete;

private:
  const Side before;
};

} // namespace corvane::test
