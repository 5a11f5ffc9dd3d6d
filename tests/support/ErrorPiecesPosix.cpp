// Standard error write by write, through a socket that keeps them apart.

#include "tests/support/ErrorPieces.h"

#include "gtest/gtest.h"

#include <array>
#include <cstdint>

#include <sys/socket.h>
#include <unistd.h>

using namespace corvane::test;

static void *pack(int descriptor) {
  return reinterpret_cast<void *>(static_cast<std::intptr_t>(descriptor));
}

static int unpack(void *channel) {
  return static_cast<int>(reinterpret_cast<std::intptr_t>(channel));
}

ErrorPieces::ErrorPieces() : before(dup(STDERR_FILENO)) {
  std::array<int, 2> ends{};
  EXPECT_EQ(socketpair(AF_UNIX, SOCK_DGRAM, 0, ends.data()), 0);
  dup2(ends[0], STDERR_FILENO);
  close(ends[0]);
  channel = pack(ends[1]);
}

ErrorPieces::~ErrorPieces() {
  dup2(before, STDERR_FILENO);
  close(before);
  close(unpack(channel));
}

std::vector<std::string> ErrorPieces::read() {
  std::vector<std::string> pieces;
  std::array<char, 1024> capacity{};
  ssize_t size = 0;
  while ((size = recv(unpack(channel), capacity.data(), capacity.size(),
                      MSG_DONTWAIT)) > 0)
    pieces.emplace_back(capacity.data(), static_cast<std::size_t>(size));
  return pieces;
}
