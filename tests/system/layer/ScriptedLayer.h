// The layer over the scripted loader, for the tests of the newer calls.

#pragma once

#include "tests/support/TempFolder.h"
#include "tests/system/LoadedLayer.h"
#include "tests/system/layer/LoaderScript.h"

#include <gmock/gmock.h>

#include <cstddef>

namespace corvane::test {

inline constexpr size_t queueEntry =
    indexOf(offsetof(cl_icd_dispatch, clCreateCommandQueueWithProperties));
inline constexpr size_t bufferEntry =
    indexOf(offsetof(cl_icd_dispatch, clCreateBufferWithProperties));
inline constexpr size_t plainBufferEntry =
    indexOf(offsetof(cl_icd_dispatch, clCreateBuffer));
inline constexpr size_t agentsEntries = 119;

/// A layer over the scripted loader, with an agent that marks the buffers that
/// it sees. Each test has a copy, because a layer starts only once.
class NewerCalls : public testing::Test {
protected:
  NewerCalls() {
    loaderScript() = {};
    loaderScript().queueAnswers = {{queue, CL_SUCCESS}};
    loaderScript().buffer = buffer;
  }

  /// The table for the application, over one of the loader's.
  const cl_icd_dispatch &start(const std::vector<void *> &loaderTable) {
    answer = layer.init(loaderTable);
    EXPECT_EQ(answer.status, CL_SUCCESS);
    EXPECT_EQ(answer.said, "");
    return *answer.table;
  }

  cl_command_queue createQueue(const cl_queue_properties *properties,
                               cl_int *status) {
    return start(scriptedTable())
        .clCreateCommandQueueWithProperties(context, device, properties,
                                            status);
  }

  cl_mem createBuffer(const cl_mem_properties *properties, cl_int *status) {
    return start(scriptedTable())
        .clCreateBufferWithProperties(context, properties, CL_MEM_READ_ONLY, 48,
                                      &memory, status);
  }

  const LoaderScript &script = loaderScript();
  const cl_context context = reinterpret_cast<cl_context>(size_t{0x10});
  const cl_device_id device = reinterpret_cast<cl_device_id>(size_t{0x20});
  const cl_command_queue queue =
      reinterpret_cast<cl_command_queue>(size_t{0x30});
  const cl_mem buffer = reinterpret_cast<cl_mem>(size_t{0x40});
  int memory = 0;
  LoadedLayer::Answer answer;

private:
  std::string copyBoth() const {
    const std::filesystem::path from = HOOKING_AGENT_FOLDER;
    std::filesystem::copy(from, copies.path());
    return copies.file(LAYER_FILE_NAME);
  }

  const TempFolder copies;
  const LoadedLayer layer{copyBoth()};
};

} // namespace corvane::test
