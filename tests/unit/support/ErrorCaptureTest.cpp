// Tests of the capture of standard error, and of child processes.

#include "tests/support/ErrorCapture.h"
#include "tests/support/ChildProcess.h"

#include "gtest/gtest.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>

using namespace corvane::test;

TEST(ErrorCapture, CollectsWhatAnyStreamWrites) {
  ErrorCapture errors;
  std::cerr << "one\n";
  std::fputs("two\n", stderr);
  EXPECT_EQ(errors.text(), "one\ntwo\n");
}

TEST(ErrorCapture, MayBeUsedOneAfterTheOther) {
  {
    ErrorCapture errors;
    std::cerr << "first";
  }
  ErrorCapture errors;
  std::cerr << "second";
  EXPECT_EQ(errors.text(), "second");
}

TEST(ChildProcess, TellsWhatItsProcessHasWritten) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    EXPECT_STREQ(std::getenv("CORVANE_DUMP_LOG"), log.c_str());
    writeBytes(log, "the log");
    std::cerr << "the error";
  });
  EXPECT_EQ(ended.diagnosticLog, "the log");
  EXPECT_EQ(ended.errorText, "the error");
}
