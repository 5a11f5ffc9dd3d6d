// Reads and writes PNG files by libpng.

#include "examples/blur/Picture.h"
#include "examples/common/Failure.h"

#include <png.h>

using namespace examples;

static_assert(sizeof(Pixel) == 4, "pixels go to libpng and OpenCL as they are");

static png_image emptyImage() {
  png_image image = {};
  image.version = PNG_IMAGE_VERSION;
  return image;
}

static Picture finishReading(png_image image, const std::string &source) {
  image.format = PNG_FORMAT_RGBA;
  Picture picture;
  picture.width = image.width;
  picture.height = image.height;
  picture.pixels.resize(picture.width * picture.height);
  if (!png_image_finish_read(&image, nullptr, picture.pixels.data(), 0,
                             nullptr))
    fail("cannot read the picture " + source + ": " + image.message);
  return picture;
}

Picture examples::readPicture(const std::string &file) {
  png_image image = emptyImage();
  if (!png_image_begin_read_from_file(&image, file.c_str()))
    fail("cannot read the picture " + file + ": " + image.message);
  return finishReading(image, file);
}

Picture examples::decodePicture(const unsigned char *bytes, size_t size) {
  png_image image = emptyImage();
  if (!png_image_begin_read_from_memory(&image, bytes, size))
    fail(std::string("cannot read the built-in picture: ") + image.message);
  return finishReading(image, "in memory");
}

void examples::writePicture(const Picture &picture, const std::string &file) {
  png_image image = emptyImage();
  image.width = static_cast<png_uint_32>(picture.width);
  image.height = static_cast<png_uint_32>(picture.height);
  image.format = PNG_FORMAT_RGBA;
  if (!png_image_write_to_file(&image, file.c_str(), 0, picture.pixels.data(),
                               0, nullptr))
    fail("cannot write the picture " + file + ": " + image.message);
}
