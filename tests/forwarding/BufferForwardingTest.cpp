// Tests that the hooks on contexts, queues and buffers hand calls on.

#include "tests/forwarding/Probe.h"

#include "gmock/gmock.h"

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;

namespace {
class ForwardingBuffers : public Forwarding {};
} // namespace

INSTANTIATE_TEST_SUITE_P(, ForwardingBuffers,
                         testing::Values(Known::State, Known::NothingAnyMore),
                         nameOfKnown);

TEST_P(ForwardingBuffers, ReleaseContextChangesNothing) {
  constexpr auto entry = &DispatchTable::clReleaseContext;
  auto *context = nonsense<cl_context>(1);
  EXPECT_EQ(call<entry>(unlikelyStatus, context), unlikelyStatus);
  EXPECT_THAT(Probe<entry>::calls, ElementsAre(Probe<entry>::Call{context}));
}

TEST_P(ForwardingBuffers, CreateCommandQueueAddsProfilingAlone) {
  constexpr auto entry = &DispatchTable::clCreateCommandQueue;
  using Entry = Probe<entry>;
  auto *context = nonsense<cl_context>(1);
  auto *device = nonsense<cl_device_id>(2);
  auto *queue = nonsense<cl_command_queue>(3);
  const cl_command_queue_properties properties = 0xF0F0F0F0F0F0F0F1;
  cl_int status = 0;

  EXPECT_EQ(call<entry>(queue, context, device, properties, &status), queue);

  EXPECT_EQ(status, unlikelyStatus);
  EXPECT_THAT(Entry::calls, ElementsAre(Entry::Call{context, device,
                                                    properties | 2, &status}));
}

TEST_P(ForwardingBuffers, CreateCommandQueueNeedsNoPlaceForItsStatus) {
  constexpr auto entry = &DispatchTable::clCreateCommandQueue;
  using Entry = Probe<entry>;
  auto *queue = nonsense<cl_command_queue>(3);
  cl_context context = nullptr;
  cl_device_id device = nullptr;
  cl_int *status = nullptr;

  EXPECT_EQ(call<entry>(queue, context, device, 0U, status), queue);
  EXPECT_THAT(Entry::calls,
              ElementsAre(Entry::Call{nullptr, nullptr, 2, nullptr}));
}

TEST_P(ForwardingBuffers, CreateBufferChangesNothing) {
  constexpr auto entry = &DispatchTable::clCreateBuffer;
  using Entry = Probe<entry>;
  auto *context = nonsense<cl_context>(1);
  auto *host = nonsense<void *>(2);
  auto *buffer = nonsense<cl_mem>(3);
  const cl_mem_flags flags = 0xFFFFFFFFFFFFFFFF;
  const std::size_t size = SIZE_MAX;
  cl_int status = 0;

  EXPECT_EQ(call<entry>(buffer, context, flags, size, host, &status), buffer);

  EXPECT_EQ(status, unlikelyStatus);
  EXPECT_THAT(Entry::calls,
              ElementsAre(Entry::Call{context, flags, size, host, &status}));
}

TEST_P(ForwardingBuffers, CreateBufferHasAPlaceForTheStatusOfItsOwn) {
  constexpr auto entry = &DispatchTable::clCreateBuffer;
  using Entry = Probe<entry>;
  auto *context = nonsense<cl_context>(1);
  auto *buffer = nonsense<cl_mem>(3);
  void *host = nullptr;
  cl_int *status = nullptr;

  EXPECT_EQ(call<entry>(buffer, context, 0U, 0U, host, status), buffer);

  ASSERT_EQ(Entry::calls.size(), 1U);
  EXPECT_NE(std::get<4>(Entry::calls[0]), nullptr);
}
