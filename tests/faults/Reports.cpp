// The table of tags and codes with which the agent reports failing calls.

#include "tests/faults/Reports.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <map>
#include <set>
#include <sstream>

using namespace corvane::test;

// The tags under which the failure of each entry is reported, and those of
// other calls that fail with it.
static const std::map<std::string, std::set<int>> &tags() {
  static const std::map<std::string, std::set<int>> known{
      {"clGetProgramInfo", {128, 131, 321, 1263}},
      {"clReleaseProgram", {148}},
      {"clGetProgramBuildInfo", {227, 234}},
      {"clCreateKernelsInProgram", {259, 535}},
      {"clReleaseKernel", {281, 601}},
      {"clBuildProgram", {342}},
      {"clCreateKernel", {460}},
      {"clGetKernelInfo", {599}},
      {"clSetKernelArg", {721}},
      {"clGetEventProfilingInfo", {741, 745}},
      {"clEnqueueNDRangeKernel", {910, 1145}},
      {"clSetEventCallback", {1123, 1145}},
      {"clSetMemObjectDestructorCallback", {1211}},
  };
  return known;
}

// The names of the codes that the scripted runtime or a test answers with.
static std::string nameOf(cl_int code) {
  switch (code) {
#define NAME(name)                                                             \
  case name:                                                                   \
    return #name;
    NAME(CL_OUT_OF_RESOURCES)
    NAME(CL_INVALID_VALUE)
    NAME(CL_INVALID_COMMAND_QUEUE)
    NAME(CL_INVALID_PROGRAM)
    NAME(CL_INVALID_PROGRAM_EXECUTABLE)
    NAME(CL_INVALID_KERNEL)
    NAME(CL_INVALID_KERNEL_ARGS)
#undef NAME
  default:
    return "unknown code(" + std::to_string(code) + ")";
  }
}

static std::set<std::string> linesFor(const Failures &failures) {
  std::set<std::string> lines{
      "Corvane's kernel cannot be launch due to incompatible ND range values "
      "or non-expected input scalar values"};
  for (const auto &[entry, code] : failures)
    if (const auto found = tags().find(entry); found != tags().end())
      for (const int tag : found->second)
        lines.insert("QrlAgent:: " + std::to_string(tag) +
                     ": CL Error: " + nameOf(code));
  return lines;
}

void corvane::test::expectReportsOf(const Failures &failures,
                                    const std::string &text,
                                    const std::string &another) {
  std::set<std::string> allowed = linesFor(failures);
  allowed.insert(another);
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);)
    EXPECT_THAT(allowed, testing::Contains(line));
}
