// Tests of the line that reports a failed call, and of the names in it.

#include "tests/behaviour/Calls.h"
#include "tests/support/ErrorCapture.h"
#include "tests/support/GroupedDigits.h"

#include "gtest/gtest.h"

#include <iostream>
#include <locale>
#include <string>

using namespace corvane;
using namespace corvane::test;

// What a failing release of a program writes.
static std::string reportOf(cl_int status) {
  FakeRuntime runtime;
  runtime.answer("clReleaseProgram", status);
  LoadedAgent agent(runtime);
  ErrorCapture errors;
  EXPECT_EQ(agent.table().clReleaseProgram(nullptr), status);
  return errors.text();
}

static std::string lineWith(const std::string &name) {
  return "QrlAgent:: 148: CL Error: " + name + "\n";
}

TEST(ErrorReport, IsOneLineWithTagAndName) {
  EXPECT_EQ(reportOf(-44), "QrlAgent:: 148: CL Error: CL_INVALID_PROGRAM\n");
}

TEST(ErrorReport, NamesEveryCodeOfOpenCl11) {
  const char *const first[] = {"CL_DEVICE_NOT_FOUND",
                               "CL_DEVICE_NOT_AVAILABLE",
                               "CL_COMPILER_NOT_AVAILABLE",
                               "CL_MEM_OBJECT_ALLOCATION_FAILURE",
                               "CL_OUT_OF_RESOURCES",
                               "CL_OUT_OF_HOST_MEMORY",
                               "CL_PROFILING_INFO_NOT_AVAILABLE",
                               "CL_MEM_COPY_OVERLAP",
                               "CL_IMAGE_FORMAT_MISMATCH",
                               "CL_IMAGE_FORMAT_NOT_SUPPORTED",
                               "CL_BUILD_PROGRAM_FAILURE",
                               "CL_MAP_FAILURE",
                               "CL_MISALIGNED_SUB_BUFFER_OFFSET"};
  cl_int code = -1;
  for (const char *name : first)
    EXPECT_EQ(reportOf(code--), lineWith(name));
  EXPECT_EQ(code, -14);

  const char *const second[] = {
      "CL_INVALID_VALUE",           "CL_INVALID_DEVICE_TYPE",
      "CL_INVALID_PLATFORM",        "CL_INVALID_DEVICE",
      "CL_INVALID_CONTEXT",         "CL_INVALID_QUEUE_PROPERTIES",
      "CL_INVALID_COMMAND_QUEUE",   "CL_INVALID_HOST_PTR",
      "CL_INVALID_MEM_OBJECT",      "CL_INVALID_IMAGE_FORMAT_DESCRIPTOR",
      "CL_INVALID_IMAGE_SIZE",      "CL_INVALID_SAMPLER",
      "CL_INVALID_BINARY",          "CL_INVALID_BUILD_OPTIONS",
      "CL_INVALID_PROGRAM",         "CL_INVALID_PROGRAM_EXECUTABLE",
      "CL_INVALID_KERNEL_NAME",     "CL_INVALID_KERNEL_DEFINITION",
      "CL_INVALID_KERNEL",          "CL_INVALID_ARG_INDEX",
      "CL_INVALID_ARG_VALUE",       "CL_INVALID_ARG_SIZE",
      "CL_INVALID_KERNEL_ARGS",     "CL_INVALID_WORK_DIMENSION",
      "CL_INVALID_WORK_GROUP_SIZE", "CL_INVALID_WORK_ITEM_SIZE",
      "CL_INVALID_GLOBAL_OFFSET",   "CL_INVALID_EVENT_WAIT_LIST",
      "CL_INVALID_EVENT",           "CL_INVALID_OPERATION",
      "CL_INVALID_GL_OBJECT",       "CL_INVALID_BUFFER_SIZE",
      "CL_INVALID_MIP_LEVEL",       "CL_INVALID_GLOBAL_WORK_SIZE"};
  code = -30;
  for (const char *name : second)
    EXPECT_EQ(reportOf(code--), lineWith(name));
  EXPECT_EQ(code, -64);
}

TEST(ErrorReport, GivesTheNumberOfCodesMinus14And5WithoutABlank) {
  EXPECT_EQ(reportOf(-14), lineWith("unknown code(-14)"));
  EXPECT_EQ(reportOf(5), lineWith("unknown code(5)"));
}

TEST(ErrorReport, IsTheSameInEveryLocale) {
  const std::locale grouped(std::locale::classic(), new GroupedDigits);
  const std::locale before = std::locale::global(grouped);
  const std::locale beforeOfErrors = std::cerr.imbue(grouped);
  EXPECT_EQ(reportOf(-1001), lineWith("unknown code(-1001)"));
  std::cerr.imbue(beforeOfErrors);
  std::locale::global(before);
}

TEST(ErrorReport, GivesTheNumberOfCodesOutsideTheNames) {
  for (const cl_int code : {-29, -64, -1001, 1, 2147483647, -2147483647 - 1})
    EXPECT_EQ(reportOf(code),
              lineWith("unknown code(" + std::to_string(code) + ")"));
}
