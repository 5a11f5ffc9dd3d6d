// The word and the clause of each reason.
#include "coarsening/Reason.h"

namespace corvane::coarsening {

llvm::StringRef codeOf(Reason reason) {
  switch (reason) {
#define REASON(name, code, sentence)                                           \
  case Reason::name:                                                           \
    return code;
#include "coarsening/Reasons.def"
  }
  return "";
}

llvm::StringRef sentenceOf(Reason reason) {
  switch (reason) {
#define REASON(name, code, sentence)                                           \
  case Reason::name:                                                           \
    return sentence;
#include "coarsening/Reasons.def"
  }
  return "";
}

} // namespace corvane::coarsening
