// Tests of what is found out about devices, whatever the runtime answers.

#include "InventedRuntime.h"

#include "programs/DeviceIdentity.h"

#include <gtest/gtest.h>

using namespace corvane;
using namespace corvane::test;

namespace {

struct IdentityOfADevice : testing::Test {
  InventedRuntime runtime;
  cl_device_id device = InventedRuntime::object<cl_device_id>(1);

  IdentityOfADevice() {
    runtime.device = {
        {CL_DEVICE_NAME, text("cpu-7")},
        {CL_DEVICE_VENDOR, text("Maker")},
        {CL_DRIVER_VERSION, text("3.1")},
        {CL_DEVICE_VERSION, text("OpenCL 3.0")},
        {CL_DEVICE_TYPE,
         value(cl_device_type{CL_DEVICE_TYPE_CPU | CL_DEVICE_TYPE_DEFAULT})},
        {CL_DEVICE_MAX_COMPUTE_UNITS, value(cl_uint{16})},
        {CL_DEVICE_LOCAL_MEM_SIZE, value(cl_ulong{524288})}};
  }
  std::string typeFor(cl_device_type type) {
    runtime.device[CL_DEVICE_TYPE] = value(type);
    return readDeviceIdentity(device)->type;
  }
};

} // namespace

TEST_F(IdentityOfADevice, IsWhatTheRuntimeTells) {
  const auto identity = readDeviceIdentity(device);
  ASSERT_TRUE(identity);
  EXPECT_EQ(identity->name, "cpu-7");
  EXPECT_EQ(identity->vendor, "Maker");
  EXPECT_EQ(identity->driver, "3.1");
  EXPECT_EQ(identity->version, "OpenCL 3.0");
  EXPECT_EQ(identity->type, "CPU");
  EXPECT_EQ(identity->units, 16U);
  EXPECT_EQ(identity->localMemory, 524288U);
}

TEST_F(IdentityOfADevice, NamesEveryType) {
  EXPECT_EQ(typeFor(CL_DEVICE_TYPE_GPU), "GPU");
  EXPECT_EQ(typeFor(CL_DEVICE_TYPE_ACCELERATOR), "accelerator");
  EXPECT_EQ(typeFor(CL_DEVICE_TYPE_CUSTOM), "custom");
  EXPECT_EQ(typeFor(0), "other");
}

TEST_F(IdentityOfADevice, IsNoneWithoutNameVendorOrDriver) {
  for (const cl_device_info what :
       {CL_DEVICE_NAME, CL_DEVICE_VENDOR, CL_DRIVER_VERSION}) {
    const Answer before = runtime.device[what];
    runtime.device.erase(what);
    EXPECT_FALSE(readDeviceIdentity(device)) << what;
    runtime.device[what] = before;
  }
  EXPECT_TRUE(readDeviceIdentity(device));
  EXPECT_FALSE(readDeviceIdentity(nullptr));
}

TEST_F(IdentityOfADevice, DoesWithoutTheRest) {
  runtime.device.erase(CL_DEVICE_VERSION);
  runtime.device.erase(CL_DEVICE_TYPE);
  runtime.device.erase(CL_DEVICE_MAX_COMPUTE_UNITS);
  runtime.device.erase(CL_DEVICE_LOCAL_MEM_SIZE);
  const auto identity = readDeviceIdentity(device);
  ASSERT_TRUE(identity);
  EXPECT_EQ(identity->version, "");
  EXPECT_EQ(identity->type, "other");
  EXPECT_EQ(identity->units, 0U);
  EXPECT_EQ(identity->localMemory, 0U);
}

TEST_F(IdentityOfADevice, SurvivesTextsWithoutAnEndAndBytesThatAreNoText) {
  runtime.device[CL_DEVICE_NAME] = bytes("no end");
  runtime.device[CL_DEVICE_VENDOR] = bytes("");
  runtime.device[CL_DRIVER_VERSION] = text("a\xff"
                                           "b");
  const auto identity = readDeviceIdentity(device);
  ASSERT_TRUE(identity);
  EXPECT_EQ(identity->name, "no end");
  EXPECT_EQ(identity->vendor, "");
  EXPECT_EQ(identity->driver, "a\xef\xbf\xbd"
                              "b");
}

TEST_F(IdentityOfADevice, IsNoneForATextOutOfAllProportion) {
  runtime.device[CL_DEVICE_NAME] = [](std::size_t, void *place,
                                      std::size_t *size) {
    EXPECT_EQ(place, nullptr);
    if (size)
      *size = static_cast<std::size_t>(-1);
    return CL_SUCCESS;
  };
  EXPECT_FALSE(readDeviceIdentity(device));
}

TEST(DeviceOfAQueue, IsTheRuntimesAnswerOrNull) {
  InventedRuntime runtime;
  const auto queue = InventedRuntime::object<cl_command_queue>(2);
  const auto device = InventedRuntime::object<cl_device_id>(3);
  EXPECT_EQ(deviceOfQueue(queue), nullptr);
  runtime.queue[CL_QUEUE_DEVICE] = value(device);
  EXPECT_EQ(deviceOfQueue(queue), device);
}
