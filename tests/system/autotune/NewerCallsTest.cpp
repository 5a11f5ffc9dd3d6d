// What the layer makes of the newer calls, below a loader that the test plays.

#include "tests/support/TempFolder.h"
#include "tests/system/LoadedLayer.h"
#include "tests/system/autotune/LoaderScript.h"

#include <gmock/gmock.h>

#include <cstddef>

using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

template <typename Handle> static Handle handle(size_t number) {
  return reinterpret_cast<Handle>(number);
}

namespace {

constexpr size_t queueEntry =
    indexOf(offsetof(cl_icd_dispatch, clCreateCommandQueueWithProperties));
constexpr size_t bufferEntry =
    indexOf(offsetof(cl_icd_dispatch, clCreateBufferWithProperties));
constexpr size_t plainBufferEntry =
    indexOf(offsetof(cl_icd_dispatch, clCreateBuffer));
constexpr size_t agentsEntries = 119;

/// A layer over the scripted loader, beside an agent that marks the buffers it
/// sees. Each test has a copy, for a layer starts once.
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
  const cl_context context = handle<cl_context>(0x10);
  const cl_device_id device = handle<cl_device_id>(0x20);
  const cl_command_queue queue = handle<cl_command_queue>(0x30);
  const cl_mem buffer = handle<cl_mem>(0x40);
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

} // namespace

TEST_F(NewerCalls, GiveAQueueWithoutAListProfiling) {
  cl_int status = -1;
  EXPECT_EQ(createQueue(nullptr, &status), queue);
  EXPECT_EQ(status, CL_SUCCESS);
  ASSERT_THAT(script.queueCalls, SizeIs(1));
  EXPECT_EQ(script.queueCalls[0].context, context);
  EXPECT_EQ(script.queueCalls[0].device, device);
  EXPECT_THAT(script.queueCalls[0].properties,
              ElementsAre(CL_QUEUE_PROPERTIES, CL_QUEUE_PROFILING_ENABLE));
}

TEST_F(NewerCalls, GiveAQueueWithAnEmptyListProfiling) {
  const cl_queue_properties none[] = {0};
  EXPECT_EQ(createQueue(none, nullptr), queue);
  ASSERT_THAT(script.queueCalls, SizeIs(1));
  EXPECT_THAT(script.queueCalls[0].properties,
              ElementsAre(CL_QUEUE_PROPERTIES, CL_QUEUE_PROFILING_ENABLE));
}

TEST_F(NewerCalls, AddProfilingToTheQueuesOwnPropertiesInTheirPlace) {
  const cl_queue_properties list[] = {CL_QUEUE_SIZE,
                                      4096,
                                      CL_QUEUE_PROPERTIES,
                                      CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE,
                                      0x1234,
                                      5,
                                      0};
  const std::vector<cl_queue_properties> before(std::begin(list),
                                                std::end(list));
  EXPECT_EQ(createQueue(list, nullptr), queue);
  ASSERT_THAT(script.queueCalls, SizeIs(1));
  EXPECT_THAT(script.queueCalls[0].properties,
              ElementsAre(CL_QUEUE_SIZE, 4096, CL_QUEUE_PROPERTIES,
                          CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE |
                              CL_QUEUE_PROFILING_ENABLE,
                          0x1234, 5));
  EXPECT_NE(script.queueCalls[0].list, list);
  EXPECT_THAT(list, testing::ElementsAreArray(before));
}

TEST_F(NewerCalls, KeepTheOrderOfPropertiesThatTheyDoNotKnow) {
  const cl_queue_properties list[] = {0x4321, 1, 0x1234, 2, 0};
  EXPECT_EQ(createQueue(list, nullptr), queue);
  ASSERT_THAT(script.queueCalls, SizeIs(1));
  EXPECT_THAT(script.queueCalls[0].properties,
              ElementsAre(0x4321, 1, 0x1234, 2, CL_QUEUE_PROPERTIES,
                          CL_QUEUE_PROFILING_ENABLE));
}

TEST_F(NewerCalls, AskAgainForTheQueueAsTheApplicationDid) {
  loaderScript().queueAnswers = {{nullptr, CL_INVALID_QUEUE_PROPERTIES},
                                 {queue, CL_SUCCESS}};
  const cl_queue_properties list[] = {CL_QUEUE_PROPERTIES, 0, 0};
  cl_int status = -1;
  EXPECT_EQ(createQueue(list, &status), queue);
  EXPECT_EQ(status, CL_SUCCESS);
  ASSERT_THAT(script.queueCalls, SizeIs(2));
  EXPECT_NE(script.queueCalls[0].list, list);
  EXPECT_EQ(script.queueCalls[1].list, list);
  EXPECT_EQ(script.queueCalls[1].errcodeRet, &status);
  EXPECT_EQ(script.queueCalls[1].context, context);
  EXPECT_EQ(script.queueCalls[1].device, device);
}

TEST_F(NewerCalls, GiveTheErrorThatTheApplicationWouldHaveGotAlone) {
  loaderScript().queueAnswers = {{nullptr, CL_INVALID_QUEUE_PROPERTIES},
                                 {nullptr, CL_INVALID_DEVICE}};
  cl_int status = -1;
  EXPECT_EQ(createQueue(nullptr, &status), nullptr);
  EXPECT_EQ(status, CL_INVALID_DEVICE);
  ASSERT_THAT(script.queueCalls, SizeIs(2));
  EXPECT_EQ(script.queueCalls[1].list, nullptr);
}

TEST_F(NewerCalls, AskAgainWithoutAPlaceForTheErrorIfThereIsNone) {
  loaderScript().queueAnswers = {{nullptr, CL_OUT_OF_HOST_MEMORY}};
  EXPECT_EQ(createQueue(nullptr, nullptr), nullptr);
  ASSERT_THAT(script.queueCalls, SizeIs(2));
  EXPECT_EQ(script.queueCalls[1].errcodeRet, nullptr);
}

TEST_F(NewerCalls, LeadABufferWithoutAListToTheAgent) {
  cl_int status = -1;
  EXPECT_EQ(createBuffer(nullptr, &status), buffer);
  EXPECT_EQ(status, CL_SUCCESS);
  ASSERT_THAT(script.bufferCalls, SizeIs(1));
  const LoaderScript::BufferCall &call = script.bufferCalls[0];
  EXPECT_FALSE(call.isNewer);
  EXPECT_EQ(call.flags, cl_mem_flags(CL_MEM_READ_ONLY | CL_MEM_ALLOC_HOST_PTR))
      << "the agent did not see it";
  EXPECT_EQ(call.context, context);
  EXPECT_EQ(call.size, 48u);
  EXPECT_EQ(call.hostPtr, &memory);
  EXPECT_EQ(call.errcodeRet, &status);
}

TEST_F(NewerCalls, LeadABufferWithAnEmptyListToTheAgent) {
  const cl_mem_properties none[] = {0};
  loaderScript().bufferStatus = CL_INVALID_BUFFER_SIZE;
  loaderScript().buffer = nullptr;
  cl_int status = -1;
  EXPECT_EQ(createBuffer(none, &status), nullptr);
  EXPECT_EQ(status, CL_INVALID_BUFFER_SIZE);
  ASSERT_THAT(script.bufferCalls, SizeIs(1));
  EXPECT_FALSE(script.bufferCalls[0].isNewer);
  EXPECT_EQ(script.bufferCalls[0].flags,
            cl_mem_flags(CL_MEM_READ_ONLY | CL_MEM_ALLOC_HOST_PTR));
}

TEST_F(NewerCalls, LeaveABufferWithPropertiesAlone) {
  const cl_mem_properties list[] = {0x1234, 1, 0};
  cl_int status = -1;
  EXPECT_EQ(createBuffer(list, &status), buffer);
  ASSERT_THAT(script.bufferCalls, SizeIs(1));
  const LoaderScript::BufferCall &call = script.bufferCalls[0];
  EXPECT_TRUE(call.isNewer);
  EXPECT_EQ(call.list, list);
  EXPECT_EQ(call.flags, cl_mem_flags(CL_MEM_READ_ONLY));
  EXPECT_EQ(call.context, context);
  EXPECT_EQ(call.size, 48u);
  EXPECT_EQ(call.hostPtr, &memory);
  EXPECT_EQ(call.errcodeRet, &status);
}

TEST_F(NewerCalls, AreTheOnlyEntriesThatTheLayerReplacesBehindTheAgents) {
  const std::vector<void *> loaderTable = scriptedTable();
  start(loaderTable);
  ASSERT_EQ(answer.count, loaderTable.size());
  for (size_t i = 0; i < loaderTable.size(); ++i)
    EXPECT_EQ(answer.entry(i) == loaderTable[i],
              i != queueEntry && i != bufferEntry && i != plainBufferEntry)
        << "entry " << i;
}

TEST_F(NewerCalls, ThatTheLoaderDoesNotOfferStayMissing) {
  std::vector<void *> loaderTable = scriptedTable();
  loaderTable[queueEntry] = nullptr;
  loaderTable[bufferEntry] = nullptr;
  start(loaderTable);
  EXPECT_EQ(answer.entry(queueEntry), nullptr);
  EXPECT_EQ(answer.entry(bufferEntry), nullptr);
  EXPECT_THAT(script.queueCalls, IsEmpty());
}

TEST_F(NewerCalls, AreNotInventedForALoaderThatEndsWithTheAgentsEntries) {
  std::vector<void *> loaderTable = scriptedTable();
  loaderTable.resize(agentsEntries);
  start(loaderTable);
  EXPECT_EQ(answer.count, agentsEntries);
  for (size_t i = agentsEntries; i <= bufferEntry; ++i)
    EXPECT_EQ(answer.entry(i), nullptr) << "entry " << i;
}
