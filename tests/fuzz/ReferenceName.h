// Kernel names read in another way than the library reads them.

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvane::fuzz {

/// An item of a spec: "g0S4".
struct Item {
  char letter;
  std::vector<std::uint32_t> numbers;
};

/// What a variant's name says, in the order of the name, with repeated items
/// repeated.
struct ReferenceName {
  std::string base;
  std::vector<Item> items;

  /// None for a name that is no variant's.
  static std::optional<ReferenceName> read(const std::string &name);

  using Sizes = std::array<std::size_t, 3>;
  bool acceptsLaunch(std::uint32_t workDim, const Sizes &global,
                     const Sizes &local) const;

  /// Whether a divisor of a request is larger than the 32 bits it is kept in.
  bool wraps() const;

  /// \p value holds 4 or 8 bytes.
  bool acceptsArgument(std::uint32_t index, const std::string &value) const;
};

} // namespace corvane::fuzz
