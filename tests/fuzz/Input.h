// What every target shares: bytes as choices, and how it says what is wrong.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace corvane::fuzz {

/// Ends the process, and with it the search, with \p text. The text is the
/// condition that should have held.
[[noreturn]] void fail(const std::string &text);

/// What fail() calls first, if not null; restores the stream for its message.
extern void (*beforeFailing)();

inline void check(bool holds, const char *text) {
  if (!holds)
    fail(text);
}

/// An input read from the front; at its end there are only zeros.
class Input {
public:
  Input(const std::uint8_t *bytes, std::size_t size)
      : rest(reinterpret_cast<const char *>(bytes), size) {}
  explicit Input(std::string_view bytes) : rest(bytes) {}

  bool empty() const { return rest.empty(); }

  /// The next byte.
  std::uint8_t byte();

  bool flag() { return (byte() & 1) != 0; }

  /// A number below \p count, which is not 0; one byte for up to 256, else two.
  std::size_t below(std::size_t count);

  /// Text up to \p end, which is taken as well, or up to the end of the input.
  std::string_view textUntil(char end);

  /// The next \p size bytes, or all that are left.
  std::string_view bytes(std::size_t size);

  /// All that is left.
  std::string_view remaining() { return bytes(rest.size()); }

private:
  std::string_view rest;
};

} // namespace corvane::fuzz

/// What a target defines: tries one input and returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data,
                                      std::size_t size);
