// Sets up a compiler for each run. It sees the program and the embedded header
// as files that lie over the real ones.
#include "coarsening/Frontend.h"

#include "coarsening/ClangHeaders.h"

#include "clang/AST/ASTConsumer.h"
#include "clang/Basic/Diagnostic.h"
#include "clang/Frontend/CompilerInstance.h"
#include "clang/Frontend/CompilerInvocation.h"
#include "clang/Frontend/FrontendAction.h"
#include "llvm/Support/VirtualFileSystem.h"

namespace corvane::coarsening {

static const unsigned char headerBytes[] = {
#include "OpenClBaseHeader.inc"
};

llvm::StringRef openClBaseHeader() {
  return {reinterpret_cast<const char *>(headerBytes), sizeof headerBytes - 1};
}

static const char programFile[] = "/program.cl";
static const char resourceFolder[] = "/opencl";

namespace {

/// Keeps the first error.
class FirstError : public clang::DiagnosticConsumer {
public:
  void HandleDiagnostic(clang::DiagnosticsEngine::Level level,
                        const clang::Diagnostic &diagnostic) override {
    DiagnosticConsumer::HandleDiagnostic(level, diagnostic);
    if (level < clang::DiagnosticsEngine::Error || error)
      return;
    llvm::SmallString<128> words;
    diagnostic.FormatDiagnostic(words);
    error = ProgramError{std::string(words)};
  }

  std::optional<ProgramError> error;
};

/// Passes the finished syntax tree to a function.
class TreeAction : public clang::ASTFrontendAction {
public:
  using Use = llvm::function_ref<void(clang::ASTContext &)>;
  explicit TreeAction(Use withTree) : use(withTree) {}

  std::unique_ptr<clang::ASTConsumer>
  CreateASTConsumer(clang::CompilerInstance &, llvm::StringRef) override {
    class Consumer : public clang::ASTConsumer {
    public:
      explicit Consumer(Use withTree) : use(withTree) {}
      void HandleTranslationUnit(clang::ASTContext &context) override {
        if (!context.getDiagnostics().hasErrorOccurred())
          use(context);
      }
      Use use;
    };
    return std::make_unique<Consumer>(use);
  }

private:
  Use use;
};

} // namespace

/// The real files, with the program and the embedded header over them.
static llvm::IntrusiveRefCntPtr<llvm::vfs::FileSystem>
filesWith(llvm::StringRef text) {
  auto own = llvm::makeIntrusiveRefCnt<llvm::vfs::InMemoryFileSystem>();
  own->addFile(programFile, 0, llvm::MemoryBuffer::getMemBufferCopy(text));
  own->addFile(std::string(resourceFolder) + "/include/opencl-c-base.h", 0,
               llvm::MemoryBuffer::getMemBufferCopy(openClBaseHeader()));
  auto all = llvm::makeIntrusiveRefCnt<llvm::vfs::OverlayFileSystem>(
      llvm::vfs::getRealFileSystem());
  all->pushOverlay(own);
  return all;
}

std::optional<ProgramError> runClang(llvm::StringRef text,
                                     llvm::ArrayRef<std::string> options,
                                     clang::FrontendAction &action) {
  std::vector<const char *> words = {"-x",
                                     "cl",
                                     "-triple",
                                     "spir64-unknown-unknown",
                                     "-w",
                                     "-fno-caret-diagnostics",
                                     "-resource-dir",
                                     resourceFolder};
  for (const std::string &option : options)
    words.push_back(option.c_str());
  words.push_back(programFile);

  FirstError errors;
  clang::CompilerInstance compiler;
  compiler.createDiagnostics(&errors, /*ShouldOwnClient=*/false);
  if (!clang::CompilerInvocation::CreateFromArgs(
          compiler.getInvocation(), words, compiler.getDiagnostics()))
    return errors.error ? errors.error : ProgramError{"unknown build options"};
  compiler.createFileManager(filesWith(text));
  const bool done = compiler.ExecuteAction(action);
  if (!done && !errors.error)
    errors.error = ProgramError{"the program cannot be read"};
  return errors.error;
}

std::optional<ProgramError>
parseProgram(llvm::StringRef text, const BuildOptions &options,
             llvm::function_ref<void(clang::ASTContext &)> use) {
  std::vector<std::string> words = options.language;
  words.insert(words.end(),
               {"-finclude-default-header", "-fdeclare-opencl-builtins"});
  TreeAction action(use);
  return runClang(text, words, action);
}

} // namespace corvane::coarsening
