// corvane-coarsen: prints a program with variants of its kernels.
#include "coarsening/Coarsener.h"
#include "coarsening/ListedProgram.h"
#include "coarsening/TextEnds.h"

#include "llvm/Support/CommandLine.h"
#include "llvm/Support/FileSystem.h"
#include "llvm/Support/JSON.h"
#include "llvm/Support/MemoryBuffer.h"
#include "llvm/Support/StringSaver.h"
#include "llvm/Support/raw_ostream.h"

using namespace corvane::coarsening;

static const char usage[] =
    "usage: corvane-coarsen FILE.cl [--plans P] [--output F] [--refusals "
    "F.json]\n"
    "                       [--analysis | --listed] [--options TEXT]\n"
    "                       [-- BUILD OPTIONS]\n"
    "Prints the program with variants of its kernels; - reads from the "
    "standard\n"
    "input.\n"
    "  --plans P        which variants: default, all, or a list with commas "
    "of\n"
    "                   [seq:][adjacent:|block:|stride:]g0S4, likewise c and "
    "l;\n"
    "                   two dimensions: g0S2g1S2\n"
    "  --output F       to this file instead of the standard output\n"
    "  --refusals F     what was made and what was not, and why, as JSON\n"
    "  --analysis       prints what differs between the work-items that "
    "become\n"
    "                   one, instead of the program\n"
    "  --listed         the program after a list of its variants; for "
    "programs\n"
    "  --options TEXT   build options in one piece, as clBuildProgram takes "
    "them\n";

namespace {

struct Request {
  std::string file;
  std::string output = "-";
  std::string report; ///< empty: none
  bool analysis = false;
  bool listed = false;
  std::vector<Plan> plans = defaultPlans();
  std::vector<std::string> options;
};

} // namespace

/// Splits a text of options at white space that is not quoted.
static void addOptions(llvm::StringRef text, std::vector<std::string> &words) {
  llvm::BumpPtrAllocator memory;
  llvm::StringSaver saver(memory);
  llvm::SmallVector<const char *, 16> pieces;
  llvm::cl::TokenizeGNUCommandLine(text, saver, pieces);
  words.insert(words.end(), pieces.begin(), pieces.end());
}

/// What the command line asks for, or nothing where it is wrong.
static std::optional<Request> readRequest(llvm::ArrayRef<const char *> words) {
  Request request;
  for (size_t i = 0; i < words.size(); ++i) {
    const llvm::StringRef word = words[i];
    if (word == "--") {
      request.options.insert(request.options.end(), words.begin() + i + 1,
                             words.end());
      break;
    }
    if (word == "--analysis") {
      request.analysis = true;
      continue;
    }
    if (word == "--listed") {
      request.listed = true;
      continue;
    }
    if (!startsWith(word, "--")) {
      if (!request.file.empty())
        return std::nullopt;
      request.file = word.str();
      continue;
    }
    if (++i == words.size())
      return std::nullopt;
    const llvm::StringRef value = words[i];
    if (word == "--output")
      request.output = value.str();
    else if (word == "--refusals")
      request.report = value.str();
    else if (word == "--options")
      addOptions(value, request.options);
    else if (std::optional<std::vector<Plan>> plans = parsePlans(value);
             word == "--plans" && plans)
      request.plans = std::move(*plans);
    else
      return std::nullopt;
  }
  if (request.file.empty())
    return std::nullopt;
  return request;
}

static std::string utf8(llvm::StringRef text) {
  return llvm::json::isUTF8(text) ? text.str() : llvm::json::fixUTF8(text);
}

static llvm::json::Value reportOf(const Coarsened &result) {
  llvm::json::Array made, refused, included;
  for (const MadeVariant &variant : result.variants)
    made.push_back(llvm::json::Object{{"kernel", utf8(variant.kernel)},
                                      {"plan", variant.plan},
                                      {"name", utf8(variant.name)}});
  for (const RefusedPlan &plan : result.refusals)
    refused.push_back(
        llvm::json::Object{{"kernel", utf8(plan.kernel)},
                           {"plan", plan.plan},
                           {"reason", codeOf(plan.refusal.reason)},
                           {"why", sentenceOf(plan.refusal.reason)},
                           {"detail", utf8(plan.refusal.detail)}});
  for (const std::string &file : result.included)
    included.push_back(utf8(file));
  llvm::json::Object report{{"variants", std::move(made)},
                            {"refusals", std::move(refused)},
                            {"included", std::move(included)}};
  if (result.error)
    report["error"] = utf8(*result.error);
  return report;
}

static bool writeFile(llvm::StringRef file, llvm::StringRef text) {
  std::error_code error;
  llvm::raw_fd_ostream stream(file, error);
  if (!error) {
    stream << text;
    stream.close();
    error = stream.error();
    stream.clear_error();
  }
  if (error)
    llvm::errs() << "corvane-coarsen: " << file << ": " << error.message()
                 << "\n";
  return !error;
}

static std::string analysisOf(const Coarsened &result) {
  std::string text;
  for (const MadeVariant &variant : result.variants)
    text += variant.name + "\n" + variant.analysis;
  return text;
}

static std::string outputOf(const Request &request, const Coarsened &result) {
  if (request.listed)
    return listedProgram(result);
  return request.analysis ? analysisOf(result) : result.program;
}

int main(int argc, char **argv) {
  const std::optional<Request> request = readRequest(
      llvm::ArrayRef<const char *>(argv + 1, static_cast<size_t>(argc - 1)));
  if (!request) {
    llvm::errs() << usage;
    return 2;
  }
  auto source = llvm::MemoryBuffer::getFileOrSTDIN(request->file);
  if (!source) {
    llvm::errs() << "corvane-coarsen: " << request->file << ": "
                 << source.getError().message() << "\n";
    return 1;
  }
  const Coarsened result =
      coarsen((*source)->getBuffer(), readBuildOptions(request->options),
              request->plans);
  if (result.error && !request->listed)
    llvm::errs() << "corvane-coarsen: " << request->file << ": "
                 << *result.error << "\n";

  bool written = true;
  if (!request->report.empty()) {
    std::string report;
    llvm::raw_string_ostream(report)
        << llvm::formatv("{0:2}\n", reportOf(result));
    written = writeFile(request->report, report);
  }
  written &= writeFile(request->output, outputOf(*request, result));
  return (result.error && !request->listed) || !written ? 1 : 0;
}
