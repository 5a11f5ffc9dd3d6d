// Runs Clang over a program's text.
#pragma once

#include "coarsening/BuildOptions.h"

#include "llvm/ADT/STLFunctionalExtras.h"
#include "llvm/ADT/StringRef.h"

#include <optional>
#include <string>

namespace clang {
class ASTContext;
class FrontendAction;
} // namespace clang

namespace corvane::coarsening {

/// What was wrong with a program: the compiler's first error.
struct ProgramError {
  std::string message;
};

/// Runs `action` over `text`, which includes nothing unless `options` say so.
std::optional<ProgramError> runClang(llvm::StringRef text,
                                     llvm::ArrayRef<std::string> options,
                                     clang::FrontendAction &action);

/// Parses preprocessed text with Clang's declarations of OpenCL, and calls
/// `use` with the syntax tree, which lives as long as the call.
std::optional<ProgramError>
parseProgram(llvm::StringRef text, const BuildOptions &options,
             llvm::function_ref<void(clang::ASTContext &)> use);

/// The text of Clang's opencl-c-base.h, embedded so that no file is needed at
/// run time. It declares OpenCL for programs; what it leaves out, Clang knows
/// itself.
llvm::StringRef openClBaseHeader();

} // namespace corvane::coarsening
