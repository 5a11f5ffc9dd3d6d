// Blurs a picture and writes it as PNG files before and after.

#include "examples/blur/Picture.h"
#include "examples/common/Device.h"
#include "examples/common/Failure.h"
#include "examples/common/Launch.h"
#include "examples/common/Options.h"
#include "examples/common/Report.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

using namespace examples;

extern const char blurSource[];
extern const unsigned char landscapePng[];
extern const size_t landscapePngSize;

static constexpr size_t localWidth = 16;
static constexpr size_t localHeight = 4;

static size_t roundUp(size_t size, size_t multiple) {
  return (size + multiple - 1) / multiple * multiple;
}

/// The pixel at a place, or the nearest one if the place is outside.
static const Pixel &pixelAt(const Picture &picture, size_t x, int dx, size_t y,
                            int dy) {
  const auto inside = [](size_t place, int step, size_t size) {
    const long moved = static_cast<long>(place) + step;
    return static_cast<size_t>(
        std::clamp(moved, 0L, static_cast<long>(size) - 1));
  };
  return picture.pixels[inside(y, dy, picture.height) * picture.width +
                        inside(x, dx, picture.width)];
}

static Pixel blurredPixel(const Picture &picture, size_t x, size_t y) {
  static constexpr unsigned weights[] = {1, 4, 6, 4, 1};
  unsigned red = 128, green = 128, blue = 128, alpha = 128;
  for (int dy = -2; dy <= 2; ++dy)
    for (int dx = -2; dx <= 2; ++dx) {
      const unsigned weight = weights[dy + 2] * weights[dx + 2];
      const Pixel &pixel = pixelAt(picture, x, dx, y, dy);
      red += weight * pixel.red;
      green += weight * pixel.green;
      blue += weight * pixel.blue;
      alpha += weight * pixel.alpha;
    }
  const auto shared = [](unsigned sum) {
    return static_cast<std::uint8_t>(sum / 256);
  };
  return {shared(red), shared(green), shared(blue), shared(alpha)};
}

static Picture blurOnHost(const Picture &picture, size_t passes) {
  Picture from = picture, to = picture;
  for (size_t pass = 0; pass < passes; ++pass) {
    for (size_t y = 0; y < from.height; ++y)
      for (size_t x = 0; x < from.width; ++x)
        to.pixels[y * from.width + x] = blurredPixel(from, x, y);
    std::swap(from, to);
  }
  return from;
}

/// Blurs \p picture once and then \p iterations times more.
static Picture blurOnDevice(const Device &device, const Picture &picture,
                            size_t iterations, Timing &timing) {
  const Program program = device.build(blurSource);
  const Kernel kernel = createKernel(program, "blur");
  Buffer from = device.bufferOf(picture.pixels);
  Buffer to = device.emptyBuffer<Pixel>(picture.pixels.size());
  const NDRange range = {2,
                         {roundUp(picture.width, localWidth),
                          roundUp(picture.height, localHeight)},
                         {localWidth, localHeight}};
  timing = timeLaunches(device, iterations, [&](size_t) {
    setArguments(kernel, to, from, static_cast<cl_int>(picture.width),
                 static_cast<cl_int>(picture.height));
    enqueue(device, kernel, range);
    std::swap(from, to);
  });

  Picture blurred = picture;
  blurred.pixels = device.read<Pixel>(from, picture.pixels.size());
  return blurred;
}

int main(int argumentCount, char **arguments) {
  setProgramName("blur");
  std::string file, folder = ".";
  size_t iterations = 20;
  Options options("Blurs a picture on an OpenCL device and writes it to the "
                  "files blur-before.png and blur-after.png.");
  options.add("--picture", file, "a PNG file, or none for a built-in picture");
  options.add("--output", folder, "an existing folder for the two files");
  options.add("--iterations", iterations, "timed launches, each blurs further");
  options.parse(argumentCount, arguments);

  const Picture before = file.empty()
                             ? decodePicture(landscapePng, landscapePngSize)
                             : readPicture(file);
  const Device device;
  Report report("blur", "a picture of " + std::to_string(before.width) + " x " +
                            std::to_string(before.height) + " pixels on " +
                            device.name());
  Timing timing;
  const Picture after = blurOnDevice(device, before, iterations, timing);
  const Picture wanted = blurOnHost(before, timing.launches);
  report.add("picture", timing, countDifferent(after.pixels, wanted.pixels),
             after.pixels.size());

  writePicture(before, folder + "/blur-before.png");
  writePicture(after, folder + "/blur-after.png");
  std::printf("  see %s/blur-before.png and %s/blur-after.png\n",
              folder.c_str(), folder.c_str());
  return report.exitCode();
}
