// Tests that a report is written in one piece, so that lines never mix.

#include "tests/behaviour/Calls.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <array>
#include <string>
#include <vector>

#include <sys/socket.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;

namespace {
/// Takes the place of standard error; every write arrives as a piece.
class Pieces {
public:
  Pieces() : before(dup(STDERR_FILENO)) {
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_DGRAM, 0, ends.data()), 0);
    dup2(ends[0], STDERR_FILENO);
  }
  ~Pieces() {
    dup2(before, STDERR_FILENO);
    for (int descriptor : {before, ends[0], ends[1]})
      close(descriptor);
  }
  Pieces(const Pieces &) = delete;
  Pieces &operator=(const Pieces &) = delete;

  std::vector<std::string> read() const {
    std::vector<std::string> pieces;
    std::array<char, 1024> room{};
    ssize_t size = 0;
    while ((size = recv(ends[1], room.data(), room.size(), MSG_DONTWAIT)) > 0)
      pieces.emplace_back(room.data(), static_cast<std::size_t>(size));
    return pieces;
  }

private:
  int before;
  std::array<int, 2> ends{};
};
} // namespace

TEST(ReportPieces, AreOneALine) {
  FakeRuntime runtime;
  LoadedAgent agent(runtime);
  Pieces pieces;
  runtime.answer("clReleaseProgram", -14);
  agent.table().clReleaseProgram(nullptr);
  agent.table().clReleaseProgram(nullptr);
  const std::string line = "QrlAgent:: 148: CL Error: unknown code(-14)\n";
  EXPECT_THAT(pieces.read(), ElementsAre(line, line));
}

TEST(ReportPieces, IncludeAWarning) {
  FakeRuntime runtime;
  Pieces pieces;
  LoadedAgent agent(runtime, {{"CORVANE_AUTOTUNE", "/nowhere/to/be/found"}});
  EXPECT_THAT(pieces.read(),
              ElementsAre("CV: /nowhere/to/be/found is invalid. There will be "
                          "no autotune output generated.\n"));
}
