// Starts the process that describes OpenCL, and reads what it has written.

#include "tools/corvane/OpenClProbe.h"

#include "base/RegularFile.h"
#include "tools/corvane/Process.h"
#include "tools/corvane/ShallowJson.h"
#include "tools/corvane/TunedFolder.h"

#include "llvm/ADT/StringRef.h"
#include "llvm/Support/FileSystem.h"

using namespace corvane;
namespace json = llvm::json;

static constexpr std::uint64_t mostProbeText = std::uint64_t(16) << 20;

static void readLine(ProbedOpenCl &probed, const json::Object &line) {
  const auto text = [&line](llvm::StringRef key) {
    const auto found = line.getString(key);
    return found ? found->str() : std::string();
  };
  const auto flag = [&line](llvm::StringRef key) {
    const auto found = line.getBoolean(key);
    return found && *found;
  };
  if (line.get("at")) {
    probed.endedAt = text("at");
  } else if (line.get("loader")) {
    probed.loader = text("loader");
    probed.loaderVersion = llvm::StringRef(text("version")).trim().str();
  } else if (line.get("takesLayers")) {
    probed.takesLayers = flag("takesLayers");
    probed.agentStarted = flag("agentStarted");
    const auto count = line.getInteger("platforms");
    probed.platformCount = count && *count > 0 ? unsigned(*count) : 0;
  } else if (line.get("platformName")) {
    probed.platforms.push_back(text("platformName"));
  } else if (line.get("device")) {
    probed.devices.push_back({text("platform"), text("device"), text("vendor"),
                              text("driver"), flag("compiler"),
                              text("problem")});
  }
}

ProbedOpenCl corvane::probeOpenCl(const ProbeWords &words) {
  (void)runAndWait({ownProgram(), describeArgument, words.loader, words.layer,
                    words.agent, words.output});
  ProbedOpenCl probed;
  llvm::Expected<std::string> text =
      readRegularFile(words.output, mostProbeText);
  if (!text) {
    llvm::consumeError(text.takeError());
    return probed;
  }
  llvm::StringRef rest = *text;
  while (!rest.empty()) {
    const auto [line, others] = rest.split('\n');
    const std::optional<json::Value> value = parseShallowJson(line);
    if (const json::Object *const object =
            value ? value->getAsObject() : nullptr)
      readLine(probed, *object);
    rest = others;
  }
  return probed;
}
