// The landscape that the blur example works on when it is given no picture.

#pragma once

#include "examples/blur/Picture.h"

namespace examples {

/// Paints mountains over a lake at sunrise; the same picture every time.
Picture paintLandscape(size_t width, size_t height);

} // namespace examples
