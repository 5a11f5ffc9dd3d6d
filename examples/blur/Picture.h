// A picture in memory, read from PNG and written to it.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace examples {

/// Red, green, blue and opacity.
struct Pixel {
  std::uint8_t red = 0, green = 0, blue = 0, alpha = 255;

  bool operator==(const Pixel &other) const {
    return red == other.red && green == other.green && blue == other.blue &&
           alpha == other.alpha;
  }
};

/// Pixels row by row from the top.
struct Picture {
  size_t width = 0;
  size_t height = 0;
  std::vector<Pixel> pixels;
};

/// Reads a file; ends the program with a message when that does not work.
Picture readPicture(const std::string &file);

/// The same for the bytes of a file.
Picture decodePicture(const unsigned char *bytes, size_t size);

/// Writes a file; ends the program with a message when that does not work.
void writePicture(const Picture &picture, const std::string &file);

} // namespace examples
