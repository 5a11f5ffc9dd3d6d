// Holds the header's text.
#include "coarsening/OpenClBaseHeader.h"

namespace corvane::coarsening {

static const unsigned char bytes[] = {
#include "OpenClBaseHeader.inc"
};

llvm::StringRef openClBaseHeader() {
  return {reinterpret_cast<const char *>(bytes), sizeof bytes - 1};
}

} // namespace corvane::coarsening
