// Writes a paragraph for each kernel and an indented line for each version.

#include "results/overview/Explanation.h"

#include "results/overview/Reasons.h"
#include "results/overview/VariantWords.h"
#include "results/overview/Words.h"
#include "results/runs/RunWriter.h"

#include "llvm/ADT/STLExtras.h"
#include "llvm/ADT/StringExtras.h"

#include <set>

using namespace corvane;

static std::string versionText(const std::string &version) {
  return version.empty() ? "original" : version;
}

static void explainVersion(llvm::raw_ostream &out,
                           const OverviewConfiguration &configuration,
                           const OverviewVersion &version) {
  out << "    " << versionText(version.figures.version);
  if (version.figures.samples != 0)
    out << ", " << durationText(version.figures.median) << ", "
        << counted(version.figures.samples, "sample", "samples");
  if (version.launches != 0)
    out << ", ran in " << counted(version.launches, "launch", "launches");
  if (const std::string why = whyText(configuration, version); !why.empty())
    out << ": " << why;
  out << '\n';
}

static void explainConfiguration(llvm::raw_ostream &out,
                                 const Overview &overview,
                                 const OverviewConfiguration &configuration) {
  out << "  " << sizesText(configuration.sizes);
  const std::string &device = overview.devices[configuration.device].name;
  if (!device.empty())
    out << " on " << device;
  out << ", " << counted(configuration.launches, "launch", "launches")
      << ": uses "
      << (configuration.winner.empty() ? "the original" : configuration.winner)
      << "; " << outcomeText(configuration.outcome);
  if (!configuration.untunable.empty())
    out << ": " << configuration.untunable;
  out << '\n';
  for (const OverviewVersion &version : configuration.versions)
    explainVersion(out, configuration, version);
}

static void explainVariants(llvm::raw_ostream &out, const ProgramLine &program,
                            const KernelVariants &kernel) {
  if (kernel.variants.empty()) {
    out << "  no variants were found";
    if (!program.whyNotGenerated.empty())
      out << ", and none were generated: " << program.whyNotGenerated;
    out << '\n';
    return;
  }
  out << "  variants found: " << kernel.variants.size() << '\n';
  for (const std::string &spec : kernel.variants)
    out << "    " << spec << ": " << variantWords(spec) << '\n';
}

static void explainLookAlikes(llvm::raw_ostream &out,
                              const ProgramLine &program,
                              const std::string &kernel) {
  for (const LookAlike &other : program.lookAlikes)
    if (other.name.rfind(kernel + "_coarsed", 0) == 0)
      out << "  " << other.name
          << " looks like a variant and is not: " << other.reason << '\n';
}

// The kernels of a program, also those of which only configurations tell.
static std::vector<KernelVariants> kernelsOf(const Overview &overview,
                                             std::size_t program) {
  std::vector<KernelVariants> kernels = overview.programs[program].line.kernels;
  std::set<std::string> known;
  for (const KernelVariants &kernel : kernels)
    known.insert(kernel.kernel);
  for (const OverviewConfiguration &configuration : overview.configurations)
    if (configuration.program == program &&
        known.insert(configuration.kernel).second)
      kernels.push_back({configuration.kernel, {}});
  return kernels;
}

bool corvane::explain(llvm::raw_ostream &out, const Overview &overview,
                      llvm::StringRef kernel) {
  bool any = false;
  for (std::size_t i = 0; i != overview.programs.size(); ++i) {
    const ProgramLine &program = overview.programs[i].line;
    for (const KernelVariants &each : kernelsOf(overview, i)) {
      if (!kernel.empty() && each.kernel != kernel)
        continue;
      out << (any ? "\n" : "") << each.kernel;
      if (!program.hash.empty())
        out << " (program " << llvm::StringRef(program.hash).take_front(8)
            << ")";
      out << '\n';
      any = true;
      explainVariants(out, program, each);
      explainLookAlikes(out, program, each.kernel);
      for (const OverviewConfiguration &configuration : overview.configurations)
        if (configuration.program == i && configuration.kernel == each.kernel)
          explainConfiguration(out, overview, configuration);
    }
  }
  return any;
}
