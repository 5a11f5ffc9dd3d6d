// Queues made by a list of properties, under a loader that the test plays.

#include "tests/system/layer/ScriptedLayer.h"

using namespace corvane::test;
using testing::ElementsAre;
using testing::SizeIs;

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
