// Follows the description of variants' names word for word, slowly.

#include "tests/fuzz/ReferenceName.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <set>
#include <sstream>

using namespace corvane::fuzz;

// Lines of a stream whose lines end with the separator.
static std::vector<std::string> split(const std::string &text, char separator) {
  std::istringstream stream(text);
  std::vector<std::string> pieces;
  for (std::string piece; std::getline(stream, piece, separator);)
    pieces.push_back(piece);
  return pieces;
}

// The result of atoi; where that is undefined, the nearest int.
static std::uint32_t number(const std::string &text) {
  using Limits = std::numeric_limits<int>;
  const long long value = std::strtoll(text.c_str(), nullptr, 10);
  return static_cast<std::uint32_t>(static_cast<int>(
      std::clamp<long long>(value, Limits::min(), Limits::max())));
}

static bool isLetter(char c) { return c >= 'a' && c <= 'z'; }

static bool isItem(const Item &item) {
  switch (item.letter) {
  case 'c':
  case 'g':
  case 'l':
    return item.numbers.size() >= 2;
  case 'r':
    return true;
  case 'd':
    return item.numbers.size() % 2 == 0;
  default:
    return false;
  }
}

static bool readItems(const std::string &spec, std::vector<Item> &items) {
  if (spec.empty() || !isLetter(spec[0]))
    return false;
  for (std::size_t begin = 0; begin != spec.size();) {
    std::size_t end = begin + 1;
    while (end != spec.size() && !isLetter(spec[end]))
      ++end;
    Item item{spec[begin], {}};
    for (const std::string &piece :
         split(spec.substr(begin + 1, end - begin - 1), 'S'))
      item.numbers.push_back(number(piece));
    if (!isItem(item))
      return false;
    items.push_back(item);
    begin = end;
  }
  return true;
}

std::optional<ReferenceName> ReferenceName::read(const std::string &name) {
  const std::vector<std::string> pieces = split(name, '_');
  ReferenceName result;
  if (pieces.size() < 3 || pieces[pieces.size() - 2] != "coarsed" ||
      !readItems(pieces.back(), result.items))
    return std::nullopt;
  for (std::size_t i = 0; i != pieces.size() - 2; ++i)
    result.base += (i == 0 ? "" : "_") + pieces[i];
  return result;
}

static bool isRequest(const Item &item) {
  return item.letter != 'r' && item.letter != 'd';
}

// A request's dimension, factor, extra factor and local multiple.
static std::array<std::uint32_t, 4> requestNumbers(const Item &item) {
  std::array<std::uint32_t, 4> numbers = {1, 1, 1, 1};
  std::copy_n(item.numbers.begin(),
              std::min(numbers.size(), item.numbers.size()), numbers.begin());
  return numbers;
}

// Products are 32 bits wide and wrap; a product of 0 accepts nothing.
static bool accepts(const Item &item, std::uint32_t workDim,
                    const ReferenceName::Sizes &global,
                    const ReferenceName::Sizes &local) {
  const std::array<std::uint32_t, 4> numbers = requestNumbers(item);
  const auto at = [&](std::size_t i) { return numbers.at(i); };
  const std::uint32_t dim = at(0);
  const std::uint32_t f = at(1) * at(2);
  const std::uint32_t h = at(1) * at(3);
  const std::uint32_t p = h * f;
  if (dim >= workDim)
    return false;
  const std::size_t g = global[dim];
  const std::size_t l = local[dim];
  if (l == 0 && (at(2) > 1 || item.letter == 'c'))
    return false;
  if (f == 0 || h == 0 || (p == 0 && item.letter != 'c'))
    return false;
  if (item.letter == 'l')
    return l % p == 0;
  if (item.letter == 'g')
    return g % p == 0 && (g / f) % (l == 0 ? 1 : l) == 0;
  return g % f == 0 && l % h == 0 && ((g / f) % l == 0 || at(2) <= 1);
}

bool ReferenceName::acceptsLaunch(std::uint32_t workDim, const Sizes &global,
                                  const Sizes &local) const {
  return std::all_of(items.begin(), items.end(), [&](const Item &item) {
    return !isRequest(item) || accepts(item, workDim, global, local);
  });
}

bool ReferenceName::wraps() const {
  return std::any_of(items.begin(), items.end(), [](const Item &item) {
    const auto [dim, factor, extra, multiple] = requestNumbers(item);
    // Each factor has at most 32 bits, so the product is exact.
    const long double product =
        static_cast<long double>(factor) * factor * extra * multiple;
    return isRequest(item) && product > UINT32_MAX;
  });
}

static std::uint64_t unsignedValue(const std::string &bytes) {
  std::uint32_t narrow = 0;
  std::uint64_t wide = 0;
  if (bytes.size() == sizeof narrow) {
    std::memcpy(&narrow, bytes.data(), sizeof narrow);
    return narrow;
  }
  std::memcpy(&wide, bytes.data(), sizeof wide);
  return wide;
}

bool ReferenceName::acceptsArgument(std::uint32_t index,
                                    const std::string &value) const {
  for (const Item &item : items) {
    if (item.letter != 'd')
      continue;
    for (std::size_t i = 0; i != item.numbers.size(); i += 2) {
      if (item.numbers[i] != index)
        continue;
      const std::uint32_t divisor = item.numbers[i + 1];
      if (divisor == 0 || unsignedValue(value) % divisor != 0)
        return false;
      break; // only the first pair of an index counts
    }
  }
  return true;
}
