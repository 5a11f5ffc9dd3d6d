// The objects of an application that uses the agent.

#pragma once

#include <CL/cl.h>

#include <cstddef>
#include <string>
#include <vector>

namespace corvane::bench {

/// A program that the application has created and built.
class Program {
public:
  /// \p kernels: the names, separated by blanks.
  explicit Program(const std::string &kernels);
  ~Program();
  Program(Program &&other) noexcept;
  Program(const Program &) = delete;
  Program &operator=(const Program &) = delete;

  operator cl_program() const { return handle; }

private:
  cl_program handle;
};

/// A kernel that the application has created.
class Kernel {
public:
  Kernel(const Program &program, const char *name);
  ~Kernel();
  Kernel(Kernel &&other) noexcept;
  Kernel(const Kernel &) = delete;
  Kernel &operator=(const Kernel &) = delete;

  operator cl_kernel() const { return handle; }

private:
  cl_kernel handle;
};

cl_mem createBuffer(std::size_t size);

/// What an application keeps alive while it makes calls: as many programs,
/// kernels and buffers as asked for. Each kernel has a variant.
class Population {
public:
  explicit Population(std::size_t count);
  ~Population();
  Population(const Population &) = delete;
  Population &operator=(const Population &) = delete;

private:
  std::vector<Program> programs;
  std::vector<Kernel> kernels;
  std::vector<cl_mem> buffers;
};

/// The names of a kernel k and its variants, of which the first accepts the
/// sizes that sizeFor(0) names, the second sizeFor(1), and so on.
std::string kernelWithVariants(std::size_t count);

/// A global size, to be launched with \p localSize, that only that variant
/// accepts, or the two variants.
inline constexpr std::size_t localSize = 64;
std::size_t sizeFor(std::size_t variant);
std::size_t sizeFor(std::size_t variant, std::size_t other);

/// Another global size that the same variants accept.
std::size_t sameAnswerFor(std::size_t global);

/// A global size that no variant accepts.
inline constexpr std::size_t sizeForNone = localSize;

} // namespace corvane::bench
