// The kinds of OpenCL C's own functions: what each means for memory and for
// other work-items.
#pragma once

#include "llvm/ADT/StringRef.h"

namespace corvane::coarsening {

enum class BuiltinKind {
  Plain, ///< nothing but its result, or what it stores through its pointers
  Load,  ///< reads through its pointer
  Store, ///< writes through its pointer, and nothing else
  GlobalId,
  LocalId,
  GroupId,
  GlobalSize,
  LocalSize,
  GroupCount,
  LinearId,
  Barrier,
  Atomic,
  Collective,
  SubGroup,
  AsyncCopy,
  Pipe,
  DeviceQueue,
  Printf,
};

/// The kind of a function that the compiler declares, by its name.
BuiltinKind builtinKind(llvm::StringRef name);

/// Whether the function asks for an id or a size in one dimension, which its
/// only argument names.
bool isDimensional(BuiltinKind kind);

} // namespace corvane::coarsening
