// Writes the line on standard error, and exits.

#include "examples/common/Failure.h"

#include <cstdio>
#include <cstdlib>

static const char *programName = "example";

void examples::setProgramName(const char *name) { programName = name; }

void examples::fail(const std::string &message) {
  std::fflush(stdout);
  std::fprintf(stderr, "%s: %s\n", programName, message.c_str());
  std::exit(EXIT_FAILURE);
}

void examples::check(cl_int status, const char *call) {
  if (status != CL_SUCCESS)
    fail(std::string(call) + " failed with status " + std::to_string(status));
}
