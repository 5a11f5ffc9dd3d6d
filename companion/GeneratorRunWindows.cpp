// There is no generator for Windows.

#include "companion/GeneratorRun.h"

using namespace corvane;

ChildRun corvane::runChild(const std::vector<std::string> &, llvm::StringRef,
                           const ChildLimits &) {
  ChildRun run;
  run.why = "variants are not generated on this system";
  return run;
}
