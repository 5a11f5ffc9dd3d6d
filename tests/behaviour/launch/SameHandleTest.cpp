// Tests of kernels that have the handle of an older one.

#include "tests/behaviour/launch/Application.h"
#include "tests/support/ErrorCapture.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane::test;
using testing::ElementsAre;

namespace {
/// The runtime destroys a kernel without telling the agent, and gives its
/// handle to the next one.
struct RecyclingRuntime : Application {
  RecyclingRuntime() {
    program.kernel("old").kernel("old_coarsed_g0S2");
    program.kernel("young").kernel("young_coarsed_g0S4");
    build();
    runtime.recycleHandles();
  }
  void releaseUnnoticed(cl_kernel kernel) {
    ErrorCapture errors;
    runtime.answer("clGetKernelInfo", CL_OUT_OF_RESOURCES, 1);
    EXPECT_EQ(release(kernel), CL_SUCCESS);
  }
  std::string launched(cl_kernel kernel) {
    runtime.forgetTranscript();
    EXPECT_EQ(launch(kernel, {16}), CL_SUCCESS);
    return launches().at(0);
  }
};
} // namespace

TEST(SameHandle, IsAnsweredByTheOlderRecord) {
  RecyclingRuntime app;
  cl_kernel old = app.create("old");
  app.releaseUnnoticed(old);
  cl_kernel young = app.create("young");
  ASSERT_EQ(young, old);
  EXPECT_EQ(app.launched(young), plainLaunch("old_coarsed_g0S2", "[8]"));
}

TEST(SameHandle, IsAnsweredByTheNextRecordWhenTheOlderOneIsRemoved) {
  RecyclingRuntime app;
  cl_kernel old = app.create("old");
  app.releaseUnnoticed(old);
  ASSERT_EQ(app.create("young"), old);
  EXPECT_EQ(app.release(old), CL_SUCCESS);
  EXPECT_THAT(app.runtime.alive("kernel"),
              ElementsAre("kernel young_coarsed_g0S4"));

  // A kernel of a third name has a null entry, which answers nothing.
  cl_kernel third = app.create("old_coarsed_g0S2");
  ASSERT_EQ(third, old);
  EXPECT_EQ(app.launched(third), plainLaunch("young_coarsed_g0S4", "[4]"));
  EXPECT_EQ(app.release(third), CL_SUCCESS);
  EXPECT_THAT(app.runtime.alive("kernel"), testing::IsEmpty());
}

TEST(SameHandle, ReachesTheRecordAfterANullEntry) {
  RecyclingRuntime app;
  cl_kernel nameless = app.create("young_coarsed_g0S4");
  app.releaseUnnoticed(nameless);
  cl_kernel young = app.create("young");
  ASSERT_EQ(young, nameless);
  EXPECT_EQ(app.launched(young), plainLaunch("young_coarsed_g0S4", "[4]"));
}
