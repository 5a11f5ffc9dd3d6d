// One thread of an application that calls everything in random order.

#pragma once

#include "tests/races/Round.h"

#include <CL/cl.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace corvane::test {

/// Calls all hooks in a random order. It launches on buffers that no other
/// thread uses, and knows their contents.
class Application {
public:
  Application(Round &ofRound, unsigned number);

  /// Takes so many steps. The first application takes the round's turn
  /// half-way.
  void run(unsigned steps);

private:
  void step();
  void useKernel();
  void useAllKernels();
  void useOwnProgram(const char *source);
  void linkProgram();
  void useOwnQueue();
  void throwBuffersAway();
  void launchSharedKernel();
  void askForKernels();

  /// A buffer, what it should hold, and the launch that wrote to it last.
  struct Owned {
    cl_mem buffer = nullptr;
    std::vector<std::uint32_t> words;
  };
  void launchOn(cl_kernel kernel, cl_command_queue queue, bool pair = false);
  bool launch(cl_kernel kernel, cl_command_queue queue);
  template <typename Value>
  void set(cl_kernel kernel, cl_uint index, const Value &value);
  cl_mem createBuffer() const;
  cl_command_queue createQueue() const;
  cl_program createProgram(const char *source) const;
  void expectKernels(cl_program program, std::size_t ordinary, std::size_t all);
  void expectContents(const Owned &owned);
  void waitForLatest();

  Round &round;
  const unsigned number;
  std::minstd_rand random;
  Owned out;
  Owned in;
  cl_event latest = nullptr;
};

} // namespace corvane::test
