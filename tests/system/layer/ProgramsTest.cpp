// Tests of the variants of a program that is retained, released, built again,
// or gone.

#include "tests/system/layer/LayeredRuntime.h"

using namespace corvane::test;
using testing::ElementsAre;

using LayeredPrograms = LayeredRuntime;

TEST_F(LayeredPrograms, KeepTheirVariantsUntilTheLastRelease) {
  withVariant(runtime.sourceMakes());
  cl_program program = createProgram();
  build(program);
  EXPECT_EQ(cl().clRetainProgram(program), CL_SUCCESS);
  EXPECT_EQ(cl().clReleaseProgram(program), CL_SUCCESS);
  EXPECT_EQ(kernelNames(program), "k;other");
  EXPECT_THAT(createKernel(program, "k"),
              ElementsAre("kernel k", "kernel k_coarsed_g0S4"));
  EXPECT_EQ(cl().clReleaseProgram(program), CL_SUCCESS);
  EXPECT_THAT(runtime.alive("program"), ElementsAre());
}

TEST_F(LayeredPrograms, AreStillHeldAfterAReleaseThatFailed) {
  withVariant(runtime.sourceMakes());
  cl_program program = createProgram();
  build(program);
  cl().clRetainProgram(program);
  runtime.answer("clReleaseProgram", CL_OUT_OF_RESOURCES, 1);
  EXPECT_EQ(cl().clReleaseProgram(program), CL_OUT_OF_RESOURCES);
  EXPECT_EQ(cl().clReleaseProgram(program), CL_SUCCESS);
  EXPECT_EQ(kernelNames(program), "k;other");
}

// A runtime may hold a reference to a kernel a little longer than the
// application.
TEST_F(LayeredPrograms, AreBuiltWhenTheRuntimeHasLetGoOfTheirKernels) {
  withVariant(runtime.sourceMakes());
  cl_program program = createProgram();
  runtime.answer("clBuildProgram", CL_INVALID_OPERATION, 1);
  EXPECT_EQ(cl().clBuildProgram(program, 0, nullptr, nullptr, nullptr, nullptr),
            CL_SUCCESS);
  EXPECT_EQ(kernelNames(program), "k;other");
}

TEST_F(LayeredPrograms, AreNotBuiltWhileTheyHaveKernels) {
  cl_program program = createProgram();
  runtime.answer("clBuildProgram", CL_INVALID_OPERATION);
  testing::internal::CaptureStderr();
  EXPECT_EQ(cl().clBuildProgram(program, 0, nullptr, nullptr, nullptr, nullptr),
            CL_INVALID_OPERATION);
  testing::internal::GetCapturedStderr();
}

// The agent gets the last release, and reports its failure.
TEST_F(LayeredPrograms, AreNotHeldMoreAfterARetainThatFailed) {
  cl_program program = createProgram();
  runtime.answer("clRetainProgram", CL_OUT_OF_RESOURCES, 1);
  EXPECT_EQ(cl().clRetainProgram(program), CL_OUT_OF_RESOURCES);
  runtime.answer("clReleaseProgram", CL_OUT_OF_RESOURCES, 1);
  testing::internal::CaptureStderr();
  EXPECT_EQ(cl().clReleaseProgram(program), CL_OUT_OF_RESOURCES);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "QrlAgent:: 148: CL Error: CL_OUT_OF_RESOURCES\n");
}

// The agent counts two builds, the application one reference.
TEST_F(LayeredPrograms,
       AreForgottenWithTheLastReleaseHoweverOftenTheyWereBuilt) {
  runtime.recycleHandles();
  withVariant(runtime.sourceMakes());
  cl_program program = createProgram();
  build(program);
  build(program);
  cl().clReleaseProgram(program);

  withVariant(runtime.sourceMakes().alreadyBuilt());
  ASSERT_EQ(createProgram(), program);
  EXPECT_EQ(kernelNames(program), "k;k_coarsed_g0S4;other");
  EXPECT_THAT(createKernel(program, "k"), ElementsAre("kernel k"));
}

TEST_F(LayeredPrograms, StartCleanWhereOneEndedUnseen) {
  runtime.recycleHandles();
  withVariant(runtime.sourceMakes());
  cl_program program = createProgram();
  build(program);
  runtime.ownTable().clReleaseProgram(program);

  withVariant(runtime.sourceMakes().alreadyBuilt());
  ASSERT_EQ(createProgram(), program);
  EXPECT_EQ(kernelNames(program), "k;k_coarsed_g0S4;other");
  EXPECT_THAT(createKernel(program, "k"), ElementsAre("kernel k"));
  EXPECT_EQ(cl().clReleaseProgram(program), CL_SUCCESS);
  EXPECT_THAT(runtime.alive("program"), ElementsAre());
}

TEST_F(LayeredPrograms, StartCleanWhereOneEndedUnseenWhenTheyAreLinked) {
  loadAutotuning();
  runtime.recycleHandles();
  withVariant(runtime.sourceMakes());
  cl_program program = createProgram();
  build(program);
  runtime.ownTable().clReleaseProgram(program);

  runtime.linkMakes().kernel("k").kernel("k_coarsed_g0S2");
  ASSERT_EQ(cl().clLinkProgram(runtime.context(), 0, nullptr, "", 0, nullptr,
                               nullptr, nullptr, nullptr),
            program);
  EXPECT_EQ(kernelNames(program), "k");
  EXPECT_THAT(createKernel(program, "k"),
              ElementsAre("kernel k", "kernel k_coarsed_g0S2"));
}

TEST_F(LayeredPrograms, HaveTheVariantsOfTheirLastBuild) {
  withVariant(runtime.sourceMakes())
      .thenBuilt()
      .kernel("k")
      .kernel("more")
      .kernel("k_coarsed_g0S2");
  cl_program program = createProgram();
  build(program);
  build(program);
  EXPECT_EQ(kernelNames(program), "k;more");
  EXPECT_THAT(createKernel(program, "k"),
              ElementsAre("kernel k", "kernel k_coarsed_g0S2"));
  build(program);
  EXPECT_EQ(kernelNames(program), "k;more");
  EXPECT_THAT(createKernel(program, "k"),
              ElementsAre("kernel k", "kernel k_coarsed_g0S2"));
}

// The agent takes no variants from a build whose log says that one spills.
TEST_F(LayeredPrograms, HaveNoVariantsOfAnEarlierBuildWhenTheLastIsPassedOver) {
  withVariant(runtime.sourceMakes())
      .thenBuilt()
      .kernel("k")
      .kernel("k_coarsed_g0S4")
      .log("calclCompile a b c k_coarsed_g0S4");
  cl_program program = createProgram();
  build(program);
  build(program);
  EXPECT_EQ(kernelNames(program), "k;k_coarsed_g0S4");
  EXPECT_THAT(createKernel(program, "k"), ElementsAre("kernel k"));
}

TEST_F(LayeredPrograms, ThatWereMadeUnseenAreKnownFromTheirBuildOn) {
  cl_program program = withVariant(runtime.addProgram());
  runtime.ownTable().clRetainProgram(program);
  EXPECT_EQ(build(program), CL_SUCCESS);
  EXPECT_EQ(kernelNames(program), "k;other");
  EXPECT_EQ(cl().clReleaseProgram(program), CL_SUCCESS);
  EXPECT_THAT(createKernel(program, "k"),
              ElementsAre("kernel k", "kernel k_coarsed_g0S4"));
  EXPECT_EQ(cl().clReleaseProgram(program), CL_SUCCESS);
  EXPECT_THAT(runtime.alive("program"), ElementsAre());
}

TEST_F(LayeredPrograms, HaveAsManyReferencesAsTheApplicationTook) {
  withVariant(runtime.sourceMakes());
  cl_program program = createProgram();
  build(program);
  build(program);
  cl_uint references = 0;
  cl().clGetProgramInfo(program, CL_PROGRAM_REFERENCE_COUNT, sizeof references,
                        &references, nullptr);
  EXPECT_EQ(references, 1u);
}

TEST_F(LayeredPrograms, ThatAreNoneAreTheRuntimesToRefuse) {
  load();
  EXPECT_EQ(cl().clRetainProgram(nullptr), CL_INVALID_PROGRAM);
  EXPECT_EQ(build(nullptr), CL_INVALID_PROGRAM);
  EXPECT_EQ(cl().clReleaseProgram(nullptr), CL_INVALID_PROGRAM);
  runtime.answer("clCreateProgramWithSource", CL_OUT_OF_HOST_MEMORY);
  EXPECT_EQ(createProgram(), nullptr);
}
