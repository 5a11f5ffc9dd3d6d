// The type of a buffer's elements, from the type of a kernel's argument.

#pragma once

#include "llvm/ADT/StringRef.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace corvane {

/// A scalar type of OpenCL C. Vectors count as their scalars; a struct, a
/// typedef and a type that is not told count as bytes.
struct ElementType {
  enum class Kind : std::uint8_t { Unsigned, Signed, Floating };

  Kind kind = Kind::Unsigned;
  std::uint8_t size = 1; ///< bytes: 1, 2, 4 or 8; of Floating never 1
};

inline bool operator==(ElementType a, ElementType b) {
  return a.kind == b.kind && a.size == b.size;
}

/// The elements of an argument whose type the runtime calls \p typeName, such
/// as "float4*" or "unsigned int*".
ElementType elementTypeOf(llvm::StringRef typeName);

/// The value of a floating-point element, whose bytes begin at \p bytes.
double floatingValue(ElementType type, const unsigned char *bytes);

/// The value of an element as text; the same number for the same bits only, so
/// that two values that differ look different.
std::string valueText(ElementType type, const unsigned char *bytes);

} // namespace corvane
