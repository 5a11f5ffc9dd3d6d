// Tests of queues made by OpenCL 1.2's call, on a device without profiling.

#include "tests/system/layer/LayeredRuntime.h"

using namespace corvane::test;
using testing::ElementsAre;

namespace {
class LayeredQueues : public LayeredRuntime {
protected:
  cl_command_queue create(cl_command_queue_properties properties,
                          cl_int *status) {
    return cl().clCreateCommandQueue(runtime.context(), runtime.device(),
                                     properties, status);
  }
  std::vector<std::string> creations() {
    return runtime.transcript({"clCreateCommandQueue"});
  }
};
} // namespace

TEST_F(LayeredQueues, AreMadeAsAskedWhereTheyCannotHaveTimes) {
  load();
  runtime.answer("clCreateCommandQueue", CL_INVALID_QUEUE_PROPERTIES, 1);
  cl_int status = -1;
  EXPECT_NE(create(CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE, &status), nullptr);
  EXPECT_EQ(status, CL_SUCCESS);
  EXPECT_THAT(creations(),
              ElementsAre("clCreateCommandQueue(context 1, device 1, 3, &)",
                          "clCreateCommandQueue(context 1, device 1, 1, &)"));
}

TEST_F(LayeredQueues, GetTheErrorThatTheApplicationWouldHaveGotAlone) {
  load();
  runtime.answer("clCreateCommandQueue", CL_OUT_OF_RESOURCES, 1);
  runtime.answer("clCreateCommandQueue", CL_INVALID_DEVICE, 2);
  cl_int status = 0;
  EXPECT_EQ(create(0, &status), nullptr);
  EXPECT_EQ(status, CL_INVALID_DEVICE);
  EXPECT_EQ(create(CL_QUEUE_PROFILING_ENABLE, nullptr) != nullptr, true);
}

TEST_F(LayeredQueues, ThatAreToHaveTimesAreNotTriedWithout) {
  load();
  runtime.answer("clCreateCommandQueue", CL_INVALID_QUEUE_PROPERTIES, 1);
  cl_int status = 0;
  EXPECT_EQ(create(CL_QUEUE_PROFILING_ENABLE, &status), nullptr);
  EXPECT_EQ(status, CL_INVALID_QUEUE_PROPERTIES);
  EXPECT_THAT(creations(),
              ElementsAre("clCreateCommandQueue(context 1, device 1, 2, &)"));
}
