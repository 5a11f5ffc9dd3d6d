// Compares what a version wrote to a buffer with what the original wrote.

#pragma once

#include "tuning/ElementType.h"
#include "tuning/Tolerance.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace corvane {

/// The largest finite magnitude among \p size bytes of floating-point elements;
/// 0 when there is none. Bytes after the last whole element are not looked at.
double largestMagnitude(ElementType type, const void *bytes, std::size_t size);

/// How an output compares with its reference.
enum class Equality : std::uint8_t { Equal, WithinBound, Different };

/// One element that differs.
struct ElementDifference {
  std::size_t element = 0; ///< index within the buffer
  std::string reference;   ///< both values as text
  std::string output;
};

/// The comparison of one buffer with its reference, piece by piece. Pieces come
/// in any order. Not for several threads at once.
class OutputComparison {
public:
  OutputComparison(ElementType elements, Tolerance tolerance)
      : type(elements), allowed(tolerance) {}

  /// Compares \p size bytes that start \p offset bytes into the buffer. An
  /// offset is a multiple of the element's size; only the buffer's last piece
  /// may end within an element.
  void addPiece(std::size_t offset, const void *reference, const void *output,
                std::size_t size);

  struct Result {
    Equality equality = Equality::Equal;
    /// Set unless the two are equal: the first element of those that no bound
    /// allows, or else the one that is farthest off.
    std::optional<ElementDifference> difference;
  };
  /// The result for the pieces so far. \p magnitude is the largest finite one
  /// of the whole reference.
  ///
  /// Within a bound an element may differ by that part of its own value, or by
  /// a hundredth of that part of \p magnitude: values that cancel to almost
  /// nothing carry the rounding of the large ones that they are made of. NaN
  /// equals NaN. Elements that are not floating-point must be bit-equal.
  Result result(double magnitude) const;

private:
  struct Finding {
    std::size_t offset; ///< in bytes, within the buffer
    double distance;
    ElementDifference difference;
  };
  void compareElement(std::size_t offset, const unsigned char *reference,
                      const unsigned char *output);
  void addForbidden(std::size_t offset, ElementType shownAs,
                    const unsigned char *reference,
                    const unsigned char *output);

  ElementType type;
  Tolerance allowed;
  /// The first difference that no bound allows.
  std::optional<Finding> forbidden;
  /// The largest difference beyond the part of the element's own value.
  std::optional<Finding> beyondPart;
  /// The largest difference within it.
  std::optional<Finding> withinPart;
};

} // namespace corvane
