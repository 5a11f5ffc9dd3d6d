// A runtime that answers questions about devices, programs and queues, rightly
// or not.

#pragma once

#include <CL/cl.h>

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <utility>

namespace corvane::test {

/// What a question asks for and where its answer goes. The status is returned.
using Answer =
    std::function<cl_int(std::size_t room, void *place, std::size_t *size)>;

/// The runtime of one test. A question without an answer is an invalid value.
struct InventedRuntime {
  InventedRuntime();
  ~InventedRuntime();
  InventedRuntime(const InventedRuntime &) = delete;
  InventedRuntime &operator=(const InventedRuntime &) = delete;

  std::map<cl_device_info, Answer> device;
  std::map<cl_program_info, Answer> program;
  std::map<std::pair<cl_device_id, cl_program_build_info>, Answer> build;
  std::map<cl_command_queue_info, Answer> queue;
  unsigned questions = 0; ///< so far

  /// An object of the runtime's; its handle is all there is of it.
  template <typename Handle> static Handle object(std::size_t number) {
    return reinterpret_cast<Handle>(number * 64);
  }
};

/// Answers with these bytes.
Answer bytes(std::string text);

/// Answers with a text and the zero at its end.
Answer text(const std::string &words);

template <typename Value> Answer value(const Value &what) {
  return bytes(
      std::string(reinterpret_cast<const char *>(&what), sizeof(what)));
}

} // namespace corvane::test
