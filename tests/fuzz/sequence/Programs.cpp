// Chooses the kernels, logs and builds of a program.

#include "tests/fuzz/ReferenceName.h"
#include "tests/fuzz/sequence/Play.h"

#include <algorithm>
#include <iterator>

using namespace corvane;
using namespace corvane::fuzz;
using namespace corvane::test;

static constexpr const char *bases[] = {"k", "blur", "a_b", "sum", "_", "k_"};
static constexpr const char *specs[] = {
    "g0S2",     "g0S4",         "c0S2",  "l0S2",     "g0S2g1S2", "r1g0S2",
    "g0S2d1S4", "c0S2S2d0S3r7", "g00S2", "g0S65536", "x1"};

std::string Play::baseName() { return bases[input.below(std::size(bases))]; }

std::string Play::specText() { return specs[input.below(std::size(specs))]; }

std::string Play::kernelName() {
  const std::size_t choice = input.below(8);
  // Without ";", which separates the names of kernels, and line feeds, which
  // end the rows of the log.
  if (choice == 7) {
    std::string name(input.textUntil('.'));
    std::replace(name.begin(), name.end(), '\n', '_');
    std::replace(name.begin(), name.end(), ';', '_');
    return name.empty() ? "?" : name.c_str();
  }
  const std::string base = baseName();
  return choice < 3 ? base : base + "_coarsed_" + specText();
}

cl_uint Play::argumentCountOf(const std::string &name) {
  const auto variant = ReferenceName::read(name);
  const std::string &base = variant ? variant->base : name;
  const cl_uint more = variant && variant->items.size() % 2 == 0 ? 1 : 0;
  return static_cast<cl_uint>(base.size() % 4) + more;
}

void Play::runKernel(const Launch &launch) {
  for (std::vector<unsigned char> *buffer : launch.buffers)
    if (buffer)
      for (unsigned char &value : *buffer)
        ++value;
}

static void declareArguments(Play &play, ProgramScript &script, cl_uint count) {
  Declaration declaration;
  if (play.input.flag())
    declaration.access = CL_KERNEL_ARG_ACCESS_READ_ONLY;
  if (play.input.flag())
    declaration.space = CL_KERNEL_ARG_ADDRESS_PRIVATE;
  // What the runtime tells is false: our kernels write to all their buffers.
  play.contentsUnknown = true;
  for (cl_uint i = 0; i != count; ++i)
    script.declares(i, declaration);
}

static void describeBuild(Play &play, ProgramScript &script) {
  for (std::size_t i = play.input.below(6); i != 0; --i) {
    const std::string name = play.kernelName();
    const cl_uint count = Play::argumentCountOf(name);
    script.kernel(name, count, Play::runKernel);
    if (play.input.below(8) == 1)
      declareArguments(play, script, count);
  }
  if (play.input.below(4) == 1)
    script.log("calclCompile a b c " + play.kernelName());
  if (play.input.below(8) == 1)
    script.buildStatus(CL_BUILD_PROGRAM_FAILURE);
}

void Play::describe(ProgramScript script) {
  if (input.below(8) == 1)
    script.devices(1 + static_cast<unsigned>(input.below(40)));
  describeBuild(*this, script);
  for (std::size_t more = input.below(3); more != 0; --more) {
    script.thenBuilt();
    describeBuild(*this, script);
  }
}
