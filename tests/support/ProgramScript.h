// What a test says about a program: its kernels, its logs, its builds.

#pragma once

#include <CL/cl.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace corvane::test {

struct Program;

/// A running kernel's view of its arguments and its ND range.
struct Launch {
  std::vector<std::vector<unsigned char>> values;    ///< empty: local memory
  std::vector<std::vector<unsigned char> *> buffers; ///< null: not a buffer
  cl_uint workDim = 0;
  std::array<std::size_t, 3> global{}; ///< 0 from workDim on
  std::array<std::size_t, 3> local{};  ///< 0 without local sizes

  /// Argument \p index as a T; zero where the argument is shorter.
  template <typename T> T value(std::size_t index) const {
    T result{};
    const std::vector<unsigned char> &bytes = values.at(index);
    std::memcpy(&result, bytes.data(), std::min(bytes.size(), sizeof result));
    return result;
  }
  /// The bytes of the buffer that is argument \p index.
  std::vector<unsigned char> &buffer(std::size_t index) const {
    return *buffers.at(index);
  }
};

/// What a kernel does; may be empty.
using KernelBody = std::function<void(const Launch &)>;

/// What the runtime tells about an argument's declaration.
struct Declaration {
  cl_kernel_arg_address_qualifier space = CL_KERNEL_ARG_ADDRESS_GLOBAL;
  cl_kernel_arg_access_qualifier access = CL_KERNEL_ARG_ACCESS_NONE;
  cl_kernel_arg_type_qualifier type = CL_KERNEL_ARG_TYPE_NONE;
  std::string typeName = {}; ///< as "float*"
};

struct KernelScript {
  std::string name;
  cl_uint argumentCount = 0;
  KernelBody body;
  /// By argument; the runtime does not tell about the others.
  std::map<cl_uint, Declaration> declarations;
};

/// What one build or link of a program comes to.
struct Build {
  cl_int status = CL_SUCCESS;
  std::vector<KernelScript> kernels;
  std::map<unsigned, std::string> logs; ///< by the device's number, from 1
};

/// Describes a program, one build after the other, and converts to its handle.
class ProgramScript {
public:
  explicit ProgramScript(std::shared_ptr<Program> described)
      : program(std::move(described)) {}

  /// The build has one kernel more, after those that it has already.
  ProgramScript &kernel(const std::string &name, cl_uint argumentCount = 0,
                        KernelBody body = {});

  /// What the program was made of; without it it has no source.
  ProgramScript &source(const std::string &text);

  /// How the latest kernel declares an argument.
  ProgramScript &declares(cl_uint argument, const Declaration &declaration);

  /// The build's log for a device; devices count from 1.
  ProgramScript &log(const std::string &text, unsigned device = 1);

  /// The build ends with this status. It has its kernels all the same.
  ProgramScript &buildStatus(cl_int status);

  /// What follows describes the next build; the last one is repeated.
  ProgramScript &thenBuilt();

  /// The program is for the runtime's first \p count devices; usually one.
  ProgramScript &devices(unsigned count);

  /// The program counts as built before the agent was loaded.
  ProgramScript &alreadyBuilt();

  cl_program handle() const;
  // NOLINTNEXTLINE(google-explicit-constructor): a script reads as its program
  operator cl_program() const { return handle(); }

private:
  std::shared_ptr<Program> program;
};

} // namespace corvane::test
