// Tests of how often a launch looks a variable up. The program's own getenv
// replaces the C library's, and libraries then call it as well.

#include "tests/behaviour/launch/Application.h"
#include "tests/support/ErrorCapture.h"

#include "gtest/gtest.h"

#include <cstring>

#include <unistd.h>

using namespace corvane::test;

static thread_local int logLookUps = 0;

extern "C" __attribute__((visibility("default"))) char *
getenv(const char *name) {
  if (std::strcmp(name, "CORVANE_DUMP_LOG") == 0)
    ++logLookUps;
  const std::size_t length = std::strlen(name);
  for (char **entry = environ; entry && *entry; ++entry)
    if (std::strncmp(*entry, name, length) == 0 && (*entry)[length] == '=')
      return *entry + length + 1;
  return nullptr;
}

static int lookUpsOfLaunch(Application &app, cl_kernel kernel,
                           const SizeList &global) {
  const int before = logLookUps;
  EXPECT_EQ(app.launch(kernel, global), CL_SUCCESS);
  return logLookUps - before;
}

TEST(LookUp, OfTheLogIsOneALaunchWhateverRuns) {
  Application app;
  app.program.kernel("k", 1).kernel("k_coarsed_g0S4d0S4", 1).kernel("plain");
  cl_kernel kernel = app.create("k");
  cl_kernel plain = app.create("plain");
  app.set(kernel, 0, cl_int{4});
  EXPECT_EQ(lookUpsOfLaunch(app, kernel, {16}), 1); // the variant
  EXPECT_EQ(lookUpsOfLaunch(app, kernel, {15}), 1);
  EXPECT_EQ(lookUpsOfLaunch(app, plain, {16}), 1);
  app.set(kernel, 0, cl_int{5});
  ErrorCapture errors;
  EXPECT_EQ(lookUpsOfLaunch(app, kernel, {16}), 1); // a rejected argument
}

TEST(LookUp, OfTheLogIsOneAnAutotunedLaunch) {
  TuningApplication app;
  app.program.kernel("k").kernel("k_coarsed_g0S4").kernel("plain");
  EXPECT_EQ(lookUpsOfLaunch(app, app.create("k"), {16}), 1);
  EXPECT_EQ(lookUpsOfLaunch(app, app.create("plain"), {16}), 1);
}

TEST(LookUp, OfTheLogIsNotMadeByASetting) {
  Application app;
  app.program.kernel("k", 1).kernel("k_coarsed_g0S4", 1);
  cl_kernel kernel = app.create("k");
  const int before = logLookUps;
  app.set(kernel, 0, cl_int{4});
  EXPECT_EQ(logLookUps, before);
}
