// The second program that has the generated variants of an application's.

#pragma once

#include "companion/ProgramOrigin.h"
#include "layer/HiddenKernels.h"
#include "layer/LayerTable.h"

#include <memory>
#include <string>

namespace corvane::layer {

/// What a companion is made of.
struct CompanionParts {
  /// Has the variants as kernels. The companion takes over a reference; null if
  /// there are no variants.
  cl_program program = nullptr;
  cl_context context = nullptr; ///< the program's
  Names variants;               ///< names, sorted
  std::string whyNone;          ///< for people; empty: none were expected
  /// Of a program that was made from a binary, if it is known.
  std::shared_ptr<const ProgramOrigin> origin;
};

/// What the layer has added to one build of an application's program. To the
/// agent the variants of the companion are kernels of that program; the
/// program itself is as the application made it.
///
/// Lives as long as the application holds the program or a kernel of it. Does
/// not change. Its last owner gives it up outside of locks, because that calls
/// the runtime.
class Companion {
public:
  explicit Companion(CompanionParts made);
  ~Companion();
  Companion(const Companion &) = delete;
  Companion &operator=(const Companion &) = delete;

  const CompanionParts parts;

  /// Whether \p name, which may be null, is one of its variants.
  bool has(const char *name) const;
};

using CompanionRef = std::shared_ptr<const Companion>;

/// The companion of \p program's latest build; null if it has none. A program
/// that the application has released has it while a kernel of it lives.
CompanionRef companionOf(cl_program program);

/// Gives \p program, which the application holds, another companion.
void setCompanion(cl_program program, CompanionRef companion);

/// Says that \p program is a new one, whatever had its handle before.
void forgetCompanion(cl_program program);

/// How many companions are in \p context: each holds a reference to it.
cl_uint companionsIn(cl_context context);

/// Has the variants of \p program built, which the runtime has just built with
/// \p options, and makes them its companion. Does nothing unless companions are
/// wanted. Takes as long as the generator and a second build do.
void bringCompanion(cl_program program, const char *options) noexcept;

/// Says of \p program, which was just linked, that there are no variants of it.
void forgoCompanion(cl_program program) noexcept;

/// What the program was made of, if it is a binary that the layer knows; else
/// null. Asks nothing of the runtime.
std::shared_ptr<const ProgramOrigin> originOf(cl_program program);

} // namespace corvane::layer
