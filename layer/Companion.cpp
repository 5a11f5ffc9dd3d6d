// Keeps companions, each under the program that it belongs to.

#include "layer/Companion.h"

#include "layer/CompanionSettings.h"
#include "layer/Programs.h"

#include <algorithm>
#include <mutex>
#include <unordered_map>
#include <utility>

using namespace corvane;
using namespace corvane::layer;

namespace {
/// All companions that live. Entries of those that are gone are dropped when
/// there are as many again as there were at the last time.
struct Registry {
  std::mutex lock;
  std::unordered_map<cl_program, std::weak_ptr<const Companion>> byProgram;
  std::unordered_map<cl_context, cl_uint> inContext;
  size_t countAtCleaning = 64;

  void dropDead() {
    if (byProgram.size() < 2 * countAtCleaning)
      return;
    for (auto each = byProgram.begin(); each != byProgram.end();)
      each = each->second.expired() ? byProgram.erase(each) : std::next(each);
    countAtCleaning = std::max<size_t>(byProgram.size(), 64);
  }
};
} // namespace

static Registry &registry() { return neverDestroyed<Registry>(); }

Companion::Companion(CompanionParts made) : parts(std::move(made)) {
  if (!parts.program)
    return;
  const std::lock_guard<std::mutex> guard(registry().lock);
  ++registry().inContext[parts.context];
}

Companion::~Companion() {
  if (!parts.program)
    return;
  {
    const std::lock_guard<std::mutex> guard(registry().lock);
    const auto counted = registry().inContext.find(parts.context);
    if (--counted->second == 0)
      registry().inContext.erase(counted);
  }
  (void)runtime().clReleaseProgram(parts.program);
}

bool Companion::has(const char *name) const {
  return name &&
         std::binary_search(parts.variants.begin(), parts.variants.end(), name);
}

CompanionRef corvane::layer::companionOf(cl_program program) {
  if (!companionsAreWanted() || inForkedChild())
    return nullptr;
  const std::lock_guard<std::mutex> guard(registry().lock);
  const auto found = registry().byProgram.find(program);
  return found == registry().byProgram.end() ? nullptr : found->second.lock();
}

void corvane::layer::setCompanion(cl_program program, CompanionRef companion) {
  {
    const std::lock_guard<std::mutex> guard(registry().lock);
    registry().dropDead();
    registry().byProgram[program] = companion;
  }
  programs().edit(program, [&](ProgramInfo &info) {
    info.companion.swap(companion); // the old one goes with this function
  });
}

void corvane::layer::forgetCompanion(cl_program program) {
  if (!companionsAreWanted())
    return;
  const std::lock_guard<std::mutex> guard(registry().lock);
  registry().byProgram.erase(program);
}

cl_uint corvane::layer::companionsIn(cl_context context) {
  const std::lock_guard<std::mutex> guard(registry().lock);
  const auto counted = registry().inContext.find(context);
  return counted == registry().inContext.end() ? 0 : counted->second;
}

std::shared_ptr<const ProgramOrigin>
corvane::layer::originOf(cl_program program) {
  const CompanionRef companion = companionOf(program);
  return companion ? companion->parts.origin : programs().read(program).origin;
}
