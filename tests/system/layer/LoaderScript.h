// The calls that create queues and buffers, played by the test.

#pragma once

#include <CL/cl_icd.h>

#include <vector>

namespace corvane::test {

/// What the layer has called, and what it is answered.
struct LoaderScript {
  struct QueueCall {
    cl_context context;
    cl_device_id device;
    const cl_queue_properties *list;
    std::vector<cl_queue_properties> properties; ///< without the final zero
    cl_int *errcodeRet;
  };
  struct BufferCall {
    cl_context context;
    const cl_mem_properties *list;
    cl_mem_flags flags;
    size_t size;
    void *hostPtr;
    cl_int *errcodeRet;
    bool isNewer;
  };
  struct QueueAnswer {
    cl_command_queue queue;
    cl_int status;
  };

  std::vector<QueueCall> queueCalls;
  std::vector<BufferCall> bufferCalls;
  std::vector<QueueAnswer> queueAnswers; ///< one a call; the last one stays
  cl_mem buffer = nullptr;
  cl_int bufferStatus = CL_SUCCESS;
};

/// The script that the calls of the table follow.
LoaderScript &loaderScript();

/// A table with those calls in it. Every other entry leads to an address that
/// belongs to it alone and must not be called.
std::vector<void *> scriptedTable();

/// The place of an entry in a table.
constexpr size_t indexOf(size_t offset) { return offset / sizeof(void *); }

} // namespace corvane::test
