// Whose code a thread runs: the agent's, or other code.

#pragma once

namespace corvane::test {

/// Whether a thread runs code of the agent or other code: the application's,
/// the runtime's, the test's. A thread begins with other code.
enum class Side { Outside, Agent };

Side sideOfThread();

/// Says which code this thread runs, until the end of the object.
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
