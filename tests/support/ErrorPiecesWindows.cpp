// Standard error write by write, through a pipe that keeps messages apart.

#include "tests/support/ErrorPieces.h"

#include "gtest/gtest.h"

#include <array>
#include <cstdint>
#include <cstdio>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

using namespace corvane::test;

static std::string pipeName() {
  return R"(\\.\pipe\corvane-test-)" + std::to_string(GetCurrentProcessId());
}

// Reading returns at once, with or without a message.
static HANDLE makePipe() {
  constexpr DWORD capacity = 65536;
  return CreateNamedPipeA(pipeName().c_str(), PIPE_ACCESS_INBOUND,
                          PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE |
                              PIPE_NOWAIT,
                          1, capacity, capacity, 0, nullptr);
}

ErrorPieces::ErrorPieces() {
  std::fflush(stderr);
  before = _dup(2);
  channel = makePipe();
  EXPECT_NE(channel, INVALID_HANDLE_VALUE) << GetLastError();
  HANDLE end = CreateFileA(pipeName().c_str(), GENERIC_WRITE, 0, nullptr,
                           OPEN_EXISTING, 0, nullptr);
  EXPECT_NE(end, INVALID_HANDLE_VALUE) << GetLastError();
  const int descriptor =
      _open_osfhandle(reinterpret_cast<std::intptr_t>(end), _O_BINARY);
  _dup2(descriptor, 2);
  _close(descriptor);
}

ErrorPieces::~ErrorPieces() {
  _dup2(before, 2);
  _close(before);
  CloseHandle(channel);
}

std::vector<std::string> ErrorPieces::read() {
  std::vector<std::string> pieces;
  std::array<char, 1024> capacity{};
  DWORD size = 0;
  while (ReadFile(channel, capacity.data(), static_cast<DWORD>(capacity.size()),
                  &size, nullptr))
    pieces.emplace_back(capacity.data(), size);
  return pieces;
}
