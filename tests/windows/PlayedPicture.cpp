// Replaces the PNG files of the blur example: its picture is computed.

#include "examples/blur/Landscape.h"
#include "examples/common/Failure.h"

#include <cstdio>

using namespace examples;

// The program asks to have this decoded; the picture is computed instead.
extern const unsigned char landscapePng[];
extern const size_t landscapePngSize;
const unsigned char landscapePng[] = {0};
const size_t landscapePngSize = sizeof landscapePng;

Picture examples::decodePicture(const unsigned char *, size_t) {
  return paintLandscape(96, 60);
}

Picture examples::readPicture(const std::string &file) {
  fail(file + " cannot be read: this program has its own picture only");
}

void examples::writePicture(const Picture &picture, const std::string &file) {
  std::FILE *out = std::fopen(file.c_str(), "wb");
  if (!out)
    fail(file + " cannot be written");
  std::fwrite(picture.pixels.data(), sizeof(Pixel), picture.pixels.size(), out);
  std::fclose(out);
}
