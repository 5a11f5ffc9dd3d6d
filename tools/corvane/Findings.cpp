// Writes findings as lines.

#include "tools/corvane/Findings.h"

#include "tools/corvane/Command.h"

using namespace corvane;

void Findings::add(const char *kind, const std::string &what) {
  lines += std::string(kind) + printable(what) + "\n";
}

void Findings::ok(const llvm::Twine &what) { add("ok    ", what.str()); }

void Findings::warn(const llvm::Twine &what, const llvm::Twine &advice) {
  add("warn  ", (what + ": " + advice).str());
}

void Findings::fail(const llvm::Twine &what, const llvm::Twine &advice) {
  failed = true;
  add("fail  ", (what + ": " + advice).str());
}
