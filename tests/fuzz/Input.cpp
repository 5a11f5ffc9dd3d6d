// Reads numbers and texts from the bytes of an input.

#include "tests/fuzz/Input.h"
#include <algorithm>
#include <cstdio>
#include <cstdlib>

using namespace corvane::fuzz;

void (*corvane::fuzz::beforeFailing)() = nullptr;

void corvane::fuzz::fail(const std::string &text) {
  if (beforeFailing)
    beforeFailing();
  std::fprintf(stderr, "This must be true, but is not: %s\n", text.c_str());
  std::abort();
}

std::uint8_t Input::byte() {
  if (rest.empty())
    return 0;
  const auto next = static_cast<std::uint8_t>(rest.front());
  rest.remove_prefix(1);
  return next;
}

std::size_t Input::below(std::size_t count) {
  std::size_t number = byte();
  if (count > 256)
    number = number * 256 + byte();
  return number % count;
}

std::string_view Input::textUntil(char end) {
  const std::size_t length = std::min(rest.find(end), rest.size());
  const std::string_view text = rest.substr(0, length);
  rest.remove_prefix(std::min(length + 1, rest.size()));
  return text;
}

std::string_view Input::bytes(std::size_t size) {
  const std::string_view next = rest.substr(0, size);
  rest.remove_prefix(next.size());
  return next;
}
