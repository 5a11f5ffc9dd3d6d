// Redirects standard error to a file, and back.

#include "tests/support/ErrorCapture.h"

#include "tests/support/Platform.h"

#include "gtest/gtest.h"

using namespace corvane::test;

ErrorCapture::ErrorCapture()
    : before(redirectErrorStream(folder.file(name).c_str())) {
  EXPECT_NE(before, -1) << "standard error cannot be redirected";
}

ErrorCapture::~ErrorCapture() {
  if (before != -1)
    restoreErrorStream(before);
}
