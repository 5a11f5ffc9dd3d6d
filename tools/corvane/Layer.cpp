// Looks for the layer beside this program, and adds it to OPENCL_LAYERS.

#include "tools/corvane/Layer.h"

#include "tools/corvane/Process.h"

#include "llvm/ADT/SmallVector.h"
#include "llvm/ADT/StringExtras.h"
#include "llvm/Support/FileSystem.h"
#include "llvm/Support/Path.h"
#include "llvm/Support/Process.h"
#include "llvm/Support/Program.h"

using namespace corvane;
namespace fs = llvm::sys::fs;
namespace path = llvm::sys::path;

static constexpr const char *layersVariable = "OPENCL_LAYERS";

static std::string programFolder() {
  return path::parent_path(ownProgram()).str();
}

std::optional<std::string> corvane::findLayer() {
  const std::string folder = programFolder();
  llvm::SmallString<256> beside(folder);
  path::append(beside, CORVANE_LAYER_FILE);
  llvm::SmallString<256> installed(path::parent_path(folder));
  path::append(installed, "lib", CORVANE_LAYER_FILE);
  for (llvm::SmallString<256> *place : {&beside, &installed}) {
    path::native(*place);
    if (fs::exists(*place))
      return place->str().str();
  }
  return std::nullopt;
}

std::optional<std::string> corvane::findGenerator() {
  const std::string self = ownProgram();
  llvm::SmallString<256> file(path::parent_path(self));
  path::append(file, "corvane-coarsen" + path::extension(self));
  if (!fs::exists(file))
    return std::nullopt;
  return file.str().str();
}

void corvane::addLayer(const std::string &layer) {
  const auto variable = llvm::sys::Process::GetEnv(layersVariable);
  const std::string present = variable ? *variable : std::string();
  llvm::SmallVector<llvm::StringRef, 4> layers;
  llvm::StringRef(present).split(layers, llvm::sys::EnvPathSeparator, -1,
                                 false);
  // A file has several names: with a link in it, or with other separators.
  if (llvm::none_of(layers, [&layer](llvm::StringRef listed) {
        return fs::equivalent(listed, layer);
      }))
    layers.push_back(layer);
  setVariable(layersVariable,
              llvm::join(layers, std::string(1, llvm::sys::EnvPathSeparator)));
}

std::optional<std::string> corvane::requireLayer() {
  std::optional<std::string> layer = findLayer();
  if (layer)
    addLayer(*layer);
  else
    say(CORVANE_LAYER_FILE " is not beside this program, in " +
        programFolder() + ": put it there, or build the whole project");
  return layer;
}
