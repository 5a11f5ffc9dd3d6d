// What a kernel file says about how its kernels are to be launched.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvane::test {

/// One launch: sizes in work-items. Without `hasLocal` the runtime chooses.
struct LaunchShape {
  unsigned dims = 1;
  std::array<size_t, 3> global{1, 1, 1};
  std::array<size_t, 3> local{0, 0, 0};
  std::array<size_t, 3> offset{0, 0, 0};
  bool hasLocal = false;
  std::string text; ///< as it is in the file
};

/// One argument of a kernel.
struct ArgumentShape {
  enum Kind { Buffer, Local, Value } kind = Value;
  std::string type;    ///< of an element: float, double, int, uint, uchar, ...
  size_t count = 1;    ///< elements
  double value = 0;    ///< of a Value
  double below = 1000; ///< the elements of a Buffer are from 0 to here
};

/// A kernel with its arguments and launches.
struct KernelPlan {
  std::string name;
  std::vector<ArgumentShape> arguments;
  std::vector<LaunchShape> launches;
};

struct KernelFile {
  std::string options; ///< for clBuildProgram
  bool partly = false; ///< not every kernel has variants that take its launches
  std::vector<KernelPlan> kernels;
};

/// Reads the lines of `source` that begin with "//!":
///
///   //! options -D N=16
///   //! partly
///   //! kernel name
///   //! arguments buffer float 1024, buffer int 64 below 16, local float 32,
///   int 7
///   //! launch 64x32 / 8x4 + 3x0
///
/// A launch without "/" has no local size; "+" gives an offset. On failure
/// `error` says which line is wrong.
KernelFile readKernelFile(const std::string &source, std::string &error);

/// The bytes of one element of a type, 0 for an unknown one.
size_t sizeOfType(const std::string &type);
/// The bytes of `shape.count` pseudo-random elements, the same every time.
std::vector<std::uint8_t> contentsOf(const ArgumentShape &shape,
                                     std::uint64_t seed);

} // namespace corvane::test
