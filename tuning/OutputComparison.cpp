// Compares two buffers element by element.

#include "tuning/OutputComparison.h"

#include <algorithm>
#include <cmath>
#include <cstring>

using namespace corvane;

double corvane::largestMagnitude(ElementType type, const void *bytes,
                                 std::size_t size) {
  if (type.kind != ElementType::Kind::Floating)
    return 0.0;
  const auto *begin = static_cast<const unsigned char *>(bytes);
  double largest = 0.0;
  for (std::size_t at = 0; at + type.size <= size; at += type.size) {
    const double magnitude = std::fabs(floatingValue(type, begin + at));
    // A comparison with NaN is false.
    if (magnitude > largest && !std::isinf(magnitude))
      largest = magnitude;
  }
  return largest;
}

// The first byte from \p at on that differs. Most outputs are equal, so long
// stretches are compared at once.
static std::size_t nextDifference(const unsigned char *a,
                                  const unsigned char *b, std::size_t at,
                                  std::size_t size) {
  constexpr std::size_t stretch = 4096;
  while (at < size) {
    const std::size_t length = std::min(stretch, size - at);
    if (std::memcmp(a + at, b + at, length) != 0)
      break;
    at += length;
  }
  while (at < size && a[at] == b[at])
    ++at;
  return at;
}

void OutputComparison::addPiece(std::size_t offset, const void *reference,
                                const void *output, std::size_t size) {
  const auto *expected = static_cast<const unsigned char *>(reference);
  const auto *found = static_cast<const unsigned char *>(output);
  const std::size_t whole = size - size % type.size;
  std::size_t at = nextDifference(expected, found, 0, size);
  while (at < whole) {
    const std::size_t element = at - at % type.size;
    compareElement(offset + element, expected + element, found + element);
    // Only the first forbidden difference of a buffer is told.
    if (forbidden && forbidden->offset <= offset + element)
      return;
    at = nextDifference(expected, found, element + type.size, size);
  }
  if (at < size)
    addForbidden(offset + at, ElementType{}, expected + at, found + at);
}

void OutputComparison::addForbidden(std::size_t offset, ElementType shownAs,
                                    const unsigned char *reference,
                                    const unsigned char *output) {
  if (!forbidden || offset < forbidden->offset)
    forbidden = Finding{offset,
                        0.0,
                        {offset / type.size, valueText(shownAs, reference),
                         valueText(shownAs, output)}};
}

void OutputComparison::compareElement(std::size_t offset,
                                      const unsigned char *reference,
                                      const unsigned char *output) {
  if (allowed.mode != Tolerance::Mode::Bound ||
      type.kind != ElementType::Kind::Floating)
    return addForbidden(offset, type, reference, output);
  const double expected = floatingValue(type, reference);
  const double found = floatingValue(type, output);
  const bool sameKind = std::isnan(expected) == std::isnan(found) &&
                        std::isinf(expected) == std::isinf(found);
  if (!sameKind || (std::isinf(expected) && expected != found))
    return addForbidden(offset, type, reference, output);

  const double distance =
      std::isnan(expected) ? 0.0 : std::fabs(found - expected);
  std::optional<Finding> &largest =
      distance <= allowed.bound * std::fabs(expected) ? withinPart : beyondPart;
  if (!largest || distance > largest->distance)
    largest = Finding{offset,
                      distance,
                      {offset / type.size, valueText(type, reference),
                       valueText(type, output)}};
}

OutputComparison::Result OutputComparison::result(double magnitude) const {
  if (forbidden)
    return {Equality::Different, forbidden->difference};
  if (beyondPart &&
      !(beyondPart->distance <= allowed.bound / 100.0 * magnitude))
    return {Equality::Different, beyondPart->difference};
  if (beyondPart)
    return {Equality::WithinBound, beyondPart->difference};
  if (withinPart)
    return {Equality::WithinBound, withinPart->difference};
  return {};
}
