// Paints sky, mountains and lake from noise that is the same in every run.

#include "examples/blur/Landscape.h"

#include <algorithm>
#include <cmath>

using namespace examples;

namespace {

struct Colour {
  double red, green, blue;
};

/// A range of hills; heights count from the top of the picture, which is 1
/// high.
struct Ridge {
  double crest;     ///< mean height
  double roughness; ///< how far it goes up and down
  double scale;     ///< bumps a picture's height
  unsigned seed;
  Colour foot, top;
};

} // namespace

static constexpr double shore = 0.70;
static constexpr double sunX = 1.12;
static constexpr double sunY = 0.36;

static const Ridge ridges[] = {
    {0.43, 0.34, 2.1, 11, {0.70, 0.62, 0.66}, {0.52, 0.47, 0.60}},
    {0.54, 0.26, 3.0, 23, {0.47, 0.45, 0.50}, {0.33, 0.33, 0.45}},
    {0.64, 0.16, 4.6, 37, {0.20, 0.27, 0.24}, {0.13, 0.19, 0.22}},
};

static Colour mix(const Colour &a, const Colour &b, double share) {
  const double rest = 1. - share;
  return {a.red * rest + b.red * share, a.green * rest + b.green * share,
          a.blue * rest + b.blue * share};
}

/// A number from 0 to 1 that belongs to a grid point.
static double gridNoise(int x, int y, unsigned seed) {
  unsigned hash = static_cast<unsigned>(x) * 374761393u +
                  static_cast<unsigned>(y) * 668265263u + seed * 2246822519u;
  hash = (hash ^ (hash >> 13)) * 1274126177u;
  hash ^= hash >> 16;
  return (hash & 0xffffu) / 65535.;
}

/// Noise that changes gently between the grid points.
static double smoothNoise(double x, double y, unsigned seed) {
  const double left = std::floor(x), top = std::floor(y);
  const int column = static_cast<int>(left), row = static_cast<int>(top);
  double u = x - left, v = y - top;
  u = u * u * (3. - 2. * u);
  v = v * v * (3. - 2. * v);
  const double above = gridNoise(column, row, seed) * (1. - u) +
                       gridNoise(column + 1, row, seed) * u;
  const double below = gridNoise(column, row + 1, seed) * (1. - u) +
                       gridNoise(column + 1, row + 1, seed) * u;
  return above * (1. - v) + below * v;
}

/// Large bumps with smaller ones on them, about -0.5 to 0.5.
static double bumps(double x, double y, unsigned seed) {
  double sum = 0., weight = 0.5;
  for (unsigned octave = 0; octave < 6; ++octave) {
    sum += weight * (smoothNoise(x, y, seed + octave) - 0.5);
    x *= 2.03;
    y *= 2.03;
    weight *= 0.5;
  }
  return sum;
}

static Colour sky(double x, double y) {
  Colour colour = mix({0.30, 0.44, 0.68}, {0.98, 0.76, 0.55}, y / 0.62);
  const double cloud = bumps(x * 1.6, y * 6.5, 71) * 2.6 + 0.25;
  colour = mix(colour, {1.0, 0.90, 0.82}, std::clamp(cloud, 0., 0.75));
  const double away = (x - sunX) * (x - sunX) + (y - sunY) * (y - sunY);
  return mix(colour, {1.0, 0.95, 0.80}, 1. / (1. + away * 160.));
}

static Colour hillside(const Ridge &ridge, double x, double y, double crest) {
  const double depth = std::clamp((y - crest) / (shore - crest + 0.05), 0., 1.);
  Colour colour = mix(ridge.top, ridge.foot, depth);
  // Slopes that look towards the sun are lighter.
  const double light = bumps(x * 9., y * 14. + x * 5., ridge.seed + 50);
  const double shade = 1. + 0.7 * light;
  return {colour.red * shade, colour.green * shade, colour.blue * shade};
}

/// What is seen above the water line.
static Colour land(double x, double y) {
  Colour colour = sky(x, y);
  for (const Ridge &ridge : ridges) {
    const double crest =
        ridge.crest - ridge.roughness * bumps(x * ridge.scale, 0.5, ridge.seed);
    if (y > crest)
      colour = hillside(ridge, x, y, crest);
  }
  return colour;
}

/// The land mirrored: upside down, darker and broken by waves.
static Colour lake(double x, double y) {
  const double down = y - shore;
  const double wave = bumps(x * 7., y * 55. / (0.6 + down), 91);
  const double mirrored = std::max(shore - down * 1.5 - 0.06 * wave, 0.);
  Colour colour =
      mix(land(x + 0.02 * wave, mirrored), {0.10, 0.17, 0.24}, 0.38);
  const double glint = std::clamp(wave * 2.2 - 0.35, 0., 0.5) /
                       (1. + 14. * (x - sunX) * (x - sunX));
  return mix(colour, {1.0, 0.92, 0.76}, glint);
}

static std::uint8_t toByte(double value) {
  return static_cast<std::uint8_t>(
      std::lround(std::clamp(value, 0., 1.) * 255.));
}

Picture examples::paintLandscape(size_t width, size_t height) {
  Picture picture;
  picture.width = width;
  picture.height = height;
  picture.pixels.reserve(width * height);
  for (size_t row = 0; row < height; ++row)
    for (size_t column = 0; column < width; ++column) {
      const double x =
          static_cast<double>(column) / static_cast<double>(height);
      const double y = static_cast<double>(row) / static_cast<double>(height);
      const Colour colour = y < shore ? land(x, y) : lake(x, y);
      picture.pixels.push_back(
          {toByte(colour.red), toByte(colour.green), toByte(colour.blue), 255});
    }
  return picture;
}
